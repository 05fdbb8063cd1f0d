#pragma once

/// @file
/// The processor as it describes itself today: name, version, abilities, cores, caches and pages.
/// @code
/// const Kr::OsProcessor& processor = Kr::OsProcessor::getInstance();
/// const Kr::OsProcessor::Cache* const cache = processor.findCache(2);
/// const std::int64_t bytes = cache != nullptr ? cache->size / cache->sharingThreads : 256 * 1024;
/// if (processor.has(Kr::OsProcessor::AVX2))
///     std::cout << processor.getBrand() << ": tiles of " << bytes / 2 << " bytes\n";
/// @endcode
/// What the processor does not tell is empty: a text of no characters, a number 0, no cache. It is
/// read from the identification instruction, so a virtual machine tells what it chooses to.
///
/// `OsCpuInfo` and `OsMemoryArch` are the older description, with the stated results of its time.
///
/// Read once, at the first call, and never changed: any thread may use it.
///
/// Source: Intel 64 and IA-32 Architectures Software Developer's Manual, volume 2, CPUID; AMD64
/// Architecture Programmer's Manual, volume 3, appendix E.

#include <base/krBaseApi.h>
#include <base/vector.h>

#include <cstdint>
#include <string>

namespace Kr
{

class KR_BASE_API OsProcessor
{
public:
    /// Abilities that the processor has and the system lets programs use.
    enum Feature : std::int32_t
    {
        MMX,
        SSE,
        SSE2,
        SSE3,
        SSSE3,
        SSE4_1,
        SSE4_2,
        POPCNT,
        AES,
        PCLMULQDQ,
        F16C,
        FMA,
        AVX,
        AVX2,
        BMI1,
        BMI2,
        AVX512F,
        AVX512CD,
        AVX512DQ,
        AVX512BW,
        AVX512VL
    };

    /// What a cache holds.
    enum CacheKind : std::int32_t
    {
        Data = 1,
        Instructions = 2,
        Unified = 3
    };

    /// One cache, as one thread meets it.
    struct Cache
    {
        CacheKind kind;
        int level;          ///< from 1, the nearest
        std::int64_t size;  ///< bytes
        int ways;           ///< lines that a set holds; of a fully associative cache, all
        int lineSize;       ///< bytes
        int sharingThreads; ///< the most hardware threads that share it
    };

    /// This machine's.
    static const OsProcessor& getInstance();

    /// The maker as the processor spells it: "GenuineIntel".
    const std::string& getVendor() const { return _vendor; }
    /// The name that it is sold under.
    const std::string& getBrand() const { return _brand; }
    /// @name The version, with the extended fields
    /// @{
    int getFamily() const { return _family; }
    int getModel() const { return _model; }
    int getStepping() const { return _stepping; }
    /// @}

    bool has(Feature feature) const { return (_features >> feature & 1U) != 0; }
    /// The feature's name: "AVX512F", "SSE4.1".
    static const char* getName(Feature feature);

    /// @name One processor's cores and hardware threads
    /// @{
    int getCoreCount() const { return _coreCount; }
    int getThreadCount() const { return _threadCount; }
    /// @}

    /// Every cache, from the nearest.
    const Vector<Cache>& getCaches() const { return _caches; }
    /// The cache of a level that holds data, alone or with instructions; null if there is none.
    const Cache* findCache(int level) const;

    /// The page sizes that the processor knows, in bytes, ascending; the first is the usual one.
    const Vector<std::int64_t>& getPageSizes() const { return _pageSizes; }

private:
    friend class OsProcessorReader;

    OsProcessor() = default;

    std::string _vendor;
    std::string _brand;
    int _family = 0;
    int _model = 0;
    int _stepping = 0;
    std::uint32_t _features = 0; ///< a bit for each
    int _coreCount = 0;
    int _threadCount = 0;
    Vector<Cache> _caches;
    Vector<std::int64_t> _pageSizes;
};

} // namespace Kr

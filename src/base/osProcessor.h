#pragma once

/// @file
/// The processor of this machine as today's processors describe themselves: name, features, cores,
/// the real caches, page sizes.
/// @code
/// const Kr::OsProcessor& processor = Kr::OsProcessor::getInstance();
/// const Kr::OsProcessor::Cache* l2 = processor.findCache(2, Kr::OsProcessor::Cache::Unified);
/// const std::uint64_t tile = l2 != nullptr ? l2->_size / 2 : 128 * 1024; // bytes to work on at
/// once if (processor.has(Kr::OsProcessor::Avx2))
///     std::cout << processor.getBrand() << ": tiles of " << tile << " bytes\n";
/// @endcode
/// `OsCpuInfo` and `OsMemoryArch` describe the same machine by the rules of the first processors of
/// its kind: four-bit family and model numbers, and sizes that are 0 wherever a cache is not listed
/// by the old descriptors. Code that sizes its work by the machine uses this class.
///
/// Pitfall: what the system or a virtual machine hides is empty or 0, never a guess; code needs a
/// size of its own to fall back on.

#include <base/krBaseApi.h>
#include <base/vector.h>

#include <cstdint>
#include <string>

namespace Kr
{

class OsProcessorQuery;

class KR_BASE_API OsProcessor
{
public:
    /// A feature counts only if the system saves the registers that it needs.
    enum Feature : std::int32_t
    {
        Sse,
        Sse2,
        Sse3,
        Ssse3,
        Sse41,
        Sse42,
        Popcnt,
        Aes,
        F16c,
        Fma,
        Avx,
        Avx2,
        Bmi1,
        Bmi2,
        Sha,
        Avx512F,
        Avx512Dq,
        Avx512Cd,
        Avx512Bw,
        Avx512Vl,
        Avx512Vnni,
        NbFeatures
    };

    /// One cache, as the processor's deterministic cache parameters describe it.
    struct Cache
    {
        enum Kind : std::int32_t
        {
            Data = 1,
            Instruction = 2,
            Unified = 3
        };

        std::int32_t _level; ///< 1 is the nearest to the core
        Kind _kind;
        std::uint64_t _size;      ///< bytes
        std::int32_t _ways;       ///< associativity
        std::int32_t _lineSize;   ///< bytes
        std::int32_t _nbSets;     ///< size = ways × line size × sets
        std::int32_t _maxSharing; ///< at most so many threads of the processor share one
    };

    /// This machine's, read at the first call; any thread may use it, before the library starts
    /// too.
    static const OsProcessor& getInstance();

    /// Reads the answers of any processor. `getInstance` asks this machine's.
    explicit OsProcessor(OsProcessorQuery& query);

    /// "GenuineIntel", "AuthenticAMD", ...
    const std::string& getVendor() const { return _vendor; }
    /// The product's name, without blanks around it.
    const std::string& getBrand() const { return _brand; }
    /// Family and model with their extensions, as manuals and compilers name them.
    int getFamily() const { return _family; }
    int getModel() const { return _model; }
    int getStepping() const { return _stepping; }

    bool has(Feature feature) const { return (_features >> feature & 1U) != 0; }
    /// "SSE4.1", "AVX-512F", ...; asserts that it is one of them.
    static const char* getFeatureName(Feature feature);

    /// Cores, and threads that run at once, that the program's machine has.
    int getNbCores() const { return _nbCores; }
    int getNbThreads() const { return _nbThreads; }

    /// In the processor's order: by level, data before instructions.
    const Vector<Cache>& getCaches() const { return _caches; }
    /// Null if there is none.
    const Cache* findCache(int level, Cache::Kind kind) const;

    /// Bytes of a page of memory, and of the larger pages that a program can ask for.
    std::uint64_t getPageSize() const { return _pageSize; }
    std::uint64_t getLargePageSize() const { return _largePageSize; }

private:
    void readName(OsProcessorQuery& query);
    void readFeatures(OsProcessorQuery& query);
    void readCaches(OsProcessorQuery& query);
    void readTopology(OsProcessorQuery& query);

    std::string _vendor;
    std::string _brand;
    int _family = 0;
    int _model = 0;
    int _stepping = 0;
    std::uint32_t _features = 0;
    int _nbCores = 0;
    int _nbThreads = 0;
    Vector<Cache> _caches;
    std::uint64_t _pageSize = 0;
    std::uint64_t _largePageSize = 0;
};

} // namespace Kr

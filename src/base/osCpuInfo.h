#pragma once

/// @file
/// The processor: its kind, its abilities and its high-resolution counter.
///
/// The `osal` package fills the description when it starts; after that every member may be called
/// by any thread:
/// @code
/// if (Kr::OsCpuInfo::hasSSE())
///     std::cout << Kr::OsCpuInfo::getTypeName() << " with SSE\n";
/// @endcode
/// This is what programs have been told since there were four-bit models; `OsProcessor` describes a
/// processor of today. For time stamps use `HwCounter`, whose rate fits in 31 bits; this counter is
/// the raw one behind it.

#include <base/krBaseApi.h>

#include <cstdint>

namespace Kr
{

class KR_BASE_API OsCpuInfo
{
public:
    enum Type : std::int32_t
    {
        MIPS,
        IA32,
        IA64,
        UNKNOWN
    };

    /// The geometry of one cache.
    struct CacheInfo
    {
        std::int32_t _size;          ///< bytes
        std::int32_t _associativity; ///< ways
        std::int32_t _lineSize;      ///< bytes
    };

    /// Identifies the processor and reads the counter's frequency. Raises `ExSysErrorANSI` if the
    /// system has no such counter.
    static void initialize();
    static void finalize();

    /// "MIPS", "IA32", "IA64" or "UNKNOWN".
    static const char* getTypeName();
    static bool hasMMX() { return _hasMMX; }
    static bool hasSSE() { return _hasSSE; }

    /// The kind and the four-bit family, model and stepping numbers, without their extensions. Each
    /// pointer may be null. The numbers are left alone if the processor does not tell them.
    static void getDetailedType(Type* type, int* family, int* model, int* stepping);

    /// Raw ticks per second; never 0. To ask before `initialize` has run fails the runtime's
    /// assertion, and identifies the machine where assertions are off.
    static unsigned long long getHwCounterFrequency();

    /// Raw ticks. Raises `ExSysErrorANSI` if the counter cannot be read.
    static unsigned long long getHwCounterValue();

private:
    friend class HwCounterEng;
    friend class OsMemoryArchImp;

    static bool isInitialized() { return _hwCounterFrequency != 0; }

    /// What the processor's cache descriptors tell; see `OsCpuInfoWinNT::getMemoryInfo`.
    static void getMemoryInfo(CacheInfo* l1Data, CacheInfo* l1Instruction, CacheInfo* l2Unified,
                              int* pageSize);

    static Type _type;
    static bool _hasMMX;
    static bool _hasSSE;
    static std::uint64_t _hwCounterFrequency;
};

} // namespace Kr

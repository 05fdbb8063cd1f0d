#pragma once

/// @file
/// How the answers of the processor identification instruction are read. Internal to the machine's
/// description: programs use `OsCpuInfo` and `OsMemoryArch`.
///
/// Everything here works on the registers that it is given, so that the answers of any processor,
/// recorded or invented, can be read on any machine.

#include <base/osCpuInfo.h>

namespace Kr
{

/// The four registers of one answer.
struct OsCpuRegisters
{
    std::uint32_t _eax;
    std::uint32_t _ebx;
    std::uint32_t _ecx;
    std::uint32_t _edx;
};

/// A processor that can be asked; asking the same leaf again may give another answer.
class OsCpuIdentification
{
public:
    virtual ~OsCpuIdentification();
    virtual OsCpuRegisters query(std::uint32_t leaf) = 0;
};

class OsCpuInfoWinNT
{
public:
    /// From leaf 1; both false if there is no such leaf.
    static void getFeatures(OsCpuIdentification& processor, bool* hasMMX, bool* hasSSE);

    /// From leaf 1; each pointer may be null, and nothing is written if there is no such leaf.
    static void getVersion(OsCpuIdentification& processor, int* family, int* model, int* stepping);

    /// Decodes the cache descriptors of leaf 2. What no descriptor tells is left at size 0, one
    /// way, line size 0 and page size 0.
    ///
    /// The descriptors are those of the first processors that had them; newer processors report
    /// others, which are ignored. In the rounds after the first the third register is decoded twice
    /// and the fourth not at all; this is kept, since the numbers decide how callers block their
    /// loops.
    static void getMemoryInfo(OsCpuIdentification& processor, OsCpuInfo::CacheInfo* l1Data,
                              OsCpuInfo::CacheInfo* l1Instruction, OsCpuInfo::CacheInfo* l2Unified,
                              int* pageSize);
};

} // namespace Kr

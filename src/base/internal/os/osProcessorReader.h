#pragma once

/// @file
/// How `OsProcessor` is read from a processor's answers, whether recorded or this machine's.

#include <base/internal/os/osCpuInfoWinNT.h>
#include <base/osProcessor.h>

#include <functional>

namespace Kr
{

class OsProcessorReader
{
public:
    /// The answer to a leaf and its subleaf.
    using Query = std::function<OsCpuRegisters(std::uint32_t leaf, std::uint32_t subleaf)>;

    /// @param enabledSets the register sets that the system saves, as bits of the processor's
    ///        extended control register 0
    static OsProcessor read(const Query& query, std::uint64_t enabledSets);

private:
    OsProcessorReader(const Query& query, std::uint64_t enabledSets);

    bool hasLeaf(std::uint32_t leaf) const;
    /// All zero for a leaf that the processor does not have.
    OsCpuRegisters ask(std::uint32_t leaf, std::uint32_t subleaf = 0) const;

    void readNames(OsProcessor& processor) const;
    void readVersion(OsProcessor& processor) const;
    void readFeatures(OsProcessor& processor) const;
    void readCores(OsProcessor& processor) const;
    void readCaches(OsProcessor& processor) const;
    void readPageSizes(OsProcessor& processor) const;

    const Query& _query;
    std::uint64_t _enabledSets;
    std::uint32_t _greatestLeaf;
    std::uint32_t _greatestExtendedLeaf;
};

} // namespace Kr

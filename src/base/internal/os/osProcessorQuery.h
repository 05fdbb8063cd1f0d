#pragma once

/// @file
/// What `OsProcessor` asks a processor and its system. Recorded and invented processors answer in
/// tests.

#include <cstdint>

namespace Kr
{

class OsProcessorQuery
{
public:
    struct Registers
    {
        std::uint32_t _eax;
        std::uint32_t _ebx;
        std::uint32_t _ecx;
        std::uint32_t _edx;
    };

    virtual ~OsProcessorQuery() = default;

    /// The identification instruction.
    virtual Registers identify(std::uint32_t leaf, std::uint32_t subleaf) = 0;
    /// Which register states the system saves; asked only if the processor says that it can be.
    virtual std::uint64_t getSavedStates() = 0;
    /// Threads of the machine that run at once; 0 if the system does not tell.
    virtual int getNbThreads() = 0;
    /// In bytes; 0 if there are none.
    virtual std::uint64_t getPageSize() = 0;
    virtual std::uint64_t getLargePageSize() = 0;
};

} // namespace Kr

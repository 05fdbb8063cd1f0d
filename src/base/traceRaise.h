#pragma once

/// @file
/// One raise, as the trace keeps it: what `TraceManager::visitRaises` shows.
/// @code
/// Kr::TraceManager::getInstance().visitRaises(
///     [](const Kr::TraceRaise& raise, void*)
///     { std::fprintf(stderr, "%s:%d %s\n", raise.file, int(raise.line), raise.reason); },
///     nullptr);
/// @endcode

#include <chrono>
#include <cstddef>
#include <cstdint>

namespace Kr
{

/// The sizes of the trace's memory.
struct TraceHistorySizes
{
    /// How many raises are kept.
    static constexpr std::size_t historySize = 32;
    /// The sizes of the texts kept of a raise, their terminators included; longer texts are cut.
    static constexpr std::size_t typeSize = 128;
    static constexpr std::size_t fileSize = 128;
    static constexpr std::size_t reasonSize = 256;
    static constexpr std::size_t threadNameSize = 32;
};

/// Its texts hold for as long as the visit of it lasts.
struct TraceRaise
{
    using Visitor = void (*)(const TraceRaise& raise, void* context);

    const char* type; ///< `type_info::name()` of the exception
    const char* file; ///< the exception's own position
    std::int32_t line;
    const char* reason;
    std::uint32_t thread;   ///< the operating system's number of the raising thread
    const char* threadName; ///< empty if it has none (threadName.h)
    std::chrono::system_clock::time_point time;
};

} // namespace Kr

#pragma once

/// @file
/// Internal to the system's halves of `OsProcess`: what one holds of the system.

#include <base/osProcess.h>
#include <platform/anyPipe.h>
#include <platform/anyProcess.h>

#include <chrono>
#include <utility>

namespace Kr
{

struct OsProcess::State
{
    State() = default;
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State()
    {
        closeChildEnds();
        for (KrPipe& pipe : pipes)
            krClosePipe(pipe);
        krReleaseProcess(process);
    }

    /// Opens where a stream of the child is to lead.
    KrStream connect(const OsCommand& command, Stream stream, OsCommand::Connection standard);

    /// The child has its own by now.
    void closeChildEnds() noexcept
    {
        for (HANDLE& end : childEnds)
            if (end != nullptr)
                CloseHandle(std::exchange(end, nullptr));
    }

    KrProcess process;
    KrPipe pipes[3]; ///< by the number of the stream, as the child's ends
    HANDLE childEnds[3] = {};
};

/// A point in time that is so many seconds away, or never comes.
class OsDeadline
{
public:
    using Clock = std::chrono::steady_clock;

    explicit OsDeadline(double seconds)
        : _isNever(seconds > longest)
        , _moment(Clock::now())
    {
        if (!_isNever)
            _moment +=
                std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
    }

    bool isOver() const { return !_isNever && Clock::now() >= _moment; }

    /// For a call of the system's, rounded up, so that its end is not before the moment.
    DWORD getMilliseconds() const
    {
        constexpr DWORD most = INFINITE - 1;
        if (_isNever)
            return INFINITE;
        const auto rest = std::chrono::ceil<std::chrono::milliseconds>(_moment - Clock::now());
        return rest.count() <= 0     ? 0
               : rest.count() < most ? static_cast<DWORD>(rest.count())
                                     : most;
    }

private:
    static constexpr double longest = 1e9; ///< 30 years

    bool _isNever;
    Clock::time_point _moment;
};

} // namespace Kr

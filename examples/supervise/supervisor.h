#pragma once

#include <base/osProcess.h>

#include <chrono>
#include <string>

/// Runs a program, feeds it, passes on what it writes with a mark before each line, and reports
/// once a second what it has used and moved.
class Supervisor
{
public:
    /// @param seconds after which the program is ended
    Supervisor(const Kr::OsCommand& command, std::string input, double seconds);

    Kr::OsExitStatus supervise();

private:
    Kr::OsProcess::Ending serveForASecond();
    void take(Kr::OsProcess::Stream stream, std::string_view bytes);
    void report() const;
    double getElapsed() const;

    static Kr::OsCommand connect(Kr::OsCommand command);

    const std::chrono::steady_clock::time_point _begin = std::chrono::steady_clock::now();
    const double _seconds;
    Kr::OsProcess _process;
    const std::string _input;
    std::size_t _fed = 0;
    std::size_t _collected = 0;
    std::string _lines[3]; ///< what has come of a line, by the stream
};

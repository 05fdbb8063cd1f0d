#include "supervisor.h"

#include <algorithm>
#include <iomanip>
#include <iostream>
#include <utility>

Supervisor::Supervisor(const Kr::OsCommand& command, std::string input, double seconds)
    : _seconds(seconds)
    , _process(connect(command))
    , _input(std::move(input))
{
    std::cout << "process " << _process.getId() << ": " << _process.getCommandLine() << '\n';
}

Kr::OsExitStatus Supervisor::supervise()
{
    Kr::OsProcess::Ending ending = Kr::OsProcess::TimeOver;
    while (ending == Kr::OsProcess::TimeOver && getElapsed() < _seconds)
    {
        ending = serveForASecond();
        report();
    }
    if (ending == Kr::OsProcess::PipesHeld)
        std::cout << "others, which it has left behind, hold its streams\n";
    const Kr::OsExitStatus status = _process.end();
    for (const std::string& rest : _lines)
        if (!rest.empty())
            std::cout << "  | " << rest << '\n';
    return status;
}

Kr::OsCommand Supervisor::connect(Kr::OsCommand command)
{
    for (const auto stream : {Kr::OsCommand::Input, Kr::OsCommand::Output, Kr::OsCommand::Errors})
        command.pipeStream(stream);
    return command.leadGroup(); // so that what it starts ends with it
}

Kr::OsProcess::Ending Supervisor::serveForASecond()
{
    const double rest = std::max(0., std::min(1., _seconds - getElapsed()));
    const Kr::OsProcess::Served served = _process.communicate(
        std::string_view(_input).substr(_fed),
        [this](Kr::OsProcess::Stream stream, std::string_view bytes) { take(stream, bytes); },
        rest);
    _fed += served.inputTaken;
    return served.ending;
}

/// Shows the lines that are complete.
void Supervisor::take(Kr::OsProcess::Stream stream, std::string_view bytes)
{
    std::string& line = _lines[stream];
    _collected += bytes.size();
    line.append(bytes);
    std::size_t begin = 0;
    for (std::size_t end = 0; (end = line.find('\n', begin)) != std::string::npos; begin = end + 1)
        std::cout << (stream == Kr::OsCommand::Output ? "  | " : "  ! ")
                  << std::string_view(line).substr(begin, end - begin) << '\n';
    line.erase(0, begin);
}

void Supervisor::report() const
{
    std::cout << std::fixed << std::setprecision(2) << getElapsed() << " s: processor "
              << _process.getProcessorTime() << " s, fed " << _fed << " of " << _input.size()
              << " bytes, collected " << _collected << '\n';
}

double Supervisor::getElapsed() const
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - _begin).count();
}

// The program that the tests of processes start. Its first argument says what it does; it answers
// with the status 9 if it does not know.

#include "processChild.h"

#include <base/osEnv.h>
#include <base/osProcess.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>
#include <thread>

namespace
{

using Arguments = std::vector<std::string>;

/// As text of two digits a byte, which no stream changes.
int showArguments(const Arguments& arguments)
{
    for (std::size_t i = 1; i < arguments.size(); ++i)
    {
        for (const char c : arguments[i])
            std::printf("%02x", static_cast<unsigned>(static_cast<unsigned char>(c)));
        std::printf(";");
    }
    return 0;
}

int showEnvironment(const Arguments&)
{
    for (char** entry = Kr::OsEnv::getBlock(); entry != nullptr && *entry != nullptr; ++entry)
        std::printf("%s\n", *entry);
    return 0;
}

int echo(const Arguments&)
{
    for (std::string line(65536, '\0'); std::cin;)
    {
        std::cin.read(line.data(), static_cast<std::streamsize>(line.size()));
        std::cout.write(line.data(), std::cin.gcount());
        std::cerr.write(line.data(), std::cin.gcount() / 2);
    }
    return 0;
}

/// Fills both outputs before it looks at its input.
int flood(const Arguments& arguments)
{
    const std::string block(65536, 'x');
    for (long i = std::stol(arguments.at(1)); i > 0; --i)
    {
        std::cout.write(block.data(), static_cast<std::streamsize>(block.size()));
        std::cerr.write(block.data(), static_cast<std::streamsize>(block.size()));
    }
    return echo(arguments);
}

void sayReady()
{
    std::puts("ready");
    std::fflush(stdout);
}

int sleepAfter(const Arguments& arguments)
{
    if (arguments.back() == "ignoring")
        ProcessChild::ignoreEnd();
    sayReady();
    if (arguments.back() == "closing")
        for (std::FILE* stream : {stdin, stdout, stderr})
            std::fclose(stream);
    std::this_thread::sleep_for(std::chrono::minutes(5));
    return 0;
}

int endWhenAsked(const Arguments&)
{
    ProcessChild::listenForEnd();
    sayReady();
    ProcessChild::awaitEnd();
    return 7;
}

/// Leaves a process behind that has its streams.
int leaveBehind(const Arguments&)
{
    Kr::OsProcess(Kr::OsCommand(Kr::OsProcess::getCurrentProgram(), {"sleep"})).detach();
    std::puts("left");
    return 0;
}

int leave(const Arguments& arguments)
{
    return std::stoi(arguments.at(1));
}

int crash(const Arguments&)
{
    __builtin_trap();
}

int showFolder(const Arguments&)
{
    std::cout << Kr::OsFilePath(".").getFullPath() << '\n' << Kr::OsProcess::getCurrentProgram();
    return 0;
}

struct Mode
{
    const char* name;
    int (*run)(const Arguments& arguments);
};

constexpr Mode modes[] = {
    {"arguments", showArguments},
    {"environment", showEnvironment},
    {"echo", echo},
    {"flood", flood},
    {"sleep", sleepAfter},
    {"endWhenAsked", endWhenAsked},
    {"leaveBehind", leaveBehind},
    {"exit", leave},
    {"crash", crash},
    {"folder", showFolder},
};

} // namespace

int main(int argc, char** argv)
{
    const Arguments arguments(argv + 1, argv + argc);
    for (const Mode& mode : modes)
        if (!arguments.empty() && arguments[0] == mode.name)
            return mode.run(arguments);
    return 9;
}

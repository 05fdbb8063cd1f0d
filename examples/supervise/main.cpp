// Runs a program under supervision: its lines are marked, and once a second stands between them
// what it has used.
//
//   supervise [-s SECONDS] [-i FILE] PROGRAM [ARGUMENT ...]
//
//   -s  ends the program after so long (60 s)
//   -i  feeds it the file

#include "supervisor.h"

#include <base/exBase.h>
#include <base/inOptionParser.h>
#include <base/osFileReader.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>

namespace
{

std::string readFile(const char* name)
{
    Kr::OsFileReader reader{Kr::OsFilePath(std::filesystem::path(name))};
    std::string text;
    char block[65536];
    while (const unsigned long count = reader.read(block, sizeof block))
        text.append(block, count);
    return text;
}

int usage()
{
    std::cerr << "usage: supervise [-s SECONDS] [-i FILE] PROGRAM [ARGUMENT ...]\n";
    return 2;
}

int run(int argc, char** argv)
{
    double seconds = 60.;
    std::string input;
    Kr::InOptionParser parser(argc, argv, "s:i:");
    for (int option = parser.getOption(); option != -1; option = parser.getOption())
    {
        const char* const value = parser.getValue();
        if (value == nullptr)
            return usage();
        if (option == 's')
            seconds = std::atof(value);
        else
            input = readFile(value);
    }
    const int first = parser.getArgumentIndex();
    if (first >= argc || !(seconds >= 0.))
        return usage();
    Kr::OsCommand command(argv[first]);
    for (int i = first + 1; i < argc; ++i)
        command.addArgument(argv[i]);
    const Kr::OsExitStatus status = Supervisor(command, input, seconds).supervise();
    std::cout << argv[first] << ": " << status << '\n';
    return status.isSuccess() ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    try
    {
        return run(argc, argv);
    }
    catch (const Kr::ExBase& error)
    {
        std::cerr << "supervise: " << error.getReason() << '\n';
        return 1;
    }
}

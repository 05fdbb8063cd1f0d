// Copies a directory tree, verifies the copy byte for byte, and prints a profile of it.
//
//   mirror SOURCE TARGET

#include "mirror.h"

#include <base/exBase.h>
#include <base/inInitGuard.h>
#include <base/osDateUtil.h>

#include <filesystem>
#include <iostream>

namespace
{

void run(const Kr::OsFilePath& source, const Kr::OsFilePath& target)
{
    Mirror mirror(source, target);
    mirror.collect();
    std::cout << Kr::OsDateUtil::getCurrentTime(Kr::OsDateTypes::LocalTime) << "  "
              << mirror.describe() << '\n';
    mirror.copy();
    mirror.verify();
    std::cout << "The copy is " << target.getUri() << "\n\n";
    for (const Kr::ProfilerBase* profiler : mirror.getProfilers())
        std::cout << *profiler << '\n';
}

} // namespace

int main(int argc, char** argv)
{
    try
    {
        const char* const* arguments = argv;
        int count = argc;
        const Kr::InInitGuard guard(count, arguments);
        if (argc != 3)
        {
            std::cerr << "usage: mirror SOURCE TARGET\n";
            return 2;
        }
        // The command line speaks the host's language, with its own separators.
        run(std::filesystem::path(argv[1]), std::filesystem::path(argv[2]));
        return 0;
    }
    catch (const Kr::ExBase& error)
    {
        std::cerr << error.getReason() << '\n';
        return 1;
    }
}

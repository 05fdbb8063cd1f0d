// Runs a program under supervision: its lines are marked, and once a second stands between them
// what it uses and what it has taken and given.
//
//   supervise [--seconds=60] [--input=FILE] [--remember] -- PROGRAM [ARGUMENT ...]
//
// What is given is remembered in the program's settings store with --remember, and holds from then
// on.

#include "supervisor.h"

#include <base/exBase.h>
#include <base/inContextAlias.h>
#include <base/inContextAliasMgrBase.h>
#include <base/inInit.imp>
#include <base/inInitGuard.h>
#include <base/inOptionParser.h>
#include <base/inSettings.h>
#include <base/inVariable.h>
#include <base/krInitPackages.h>
#include <base/osFileReader.h>
#include <base/osSettingsStore.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>

namespace KrInit
{

struct supervise
{
    static constexpr const char* name = "supervise";
    using Dependencies = Kr::InDependencies<base>;
    static void start() {}
    static void stop() {}
};

} // namespace KrInit

template class Kr::InInit<KrInit::supervise>;

namespace
{

Kr::InInit<KrInit::supervise> package;

const Kr::InVariable<double> seconds(package, "supervise.seconds", 60., "When the program is ended",
                                     {0., 1e9});
const Kr::InVariable<std::string> input(package, "supervise.input", "", "A file to feed it");
const Kr::InVariable<bool> remember(package, "supervise.remember", false,
                                    "Keep the settings for later runs");

const Kr::InContextAlias secondsAlias("supervise.seconds", "--seconds");
const Kr::InContextAlias inputAlias("supervise.input", "--input");
const Kr::InContextAlias rememberAlias("supervise.remember", "--remember");

std::string readFile(const std::string& name)
{
    if (name.empty())
        return name;
    Kr::OsFileReader reader{Kr::OsFilePath(std::filesystem::path(name))};
    std::string text;
    char block[65536];
    while (const unsigned long count = reader.read(block, sizeof block))
        text.append(block, count);
    return text;
}

int run()
{
    Kr::Vector<char*> words = Kr::InContextAliasMgrBase::getRemainingWords();
    const int count = static_cast<int>(words.size());
    Kr::InOptionParser parser(count, words.data(), "");
    const bool hasOption = parser.getOption() != -1;
    const int first = parser.getArgumentIndex();
    if (hasOption || first >= count)
    {
        std::cerr << "usage: supervise [OPTIONS] -- PROGRAM [ARGUMENT ...], see --help\n";
        return 2;
    }
    if (remember.getValue())
        Kr::InSettings::store(package);
    Kr::OsCommand command(words[static_cast<std::size_t>(first)]);
    for (int i = first + 1; i < count; ++i)
        command.addArgument(words[static_cast<std::size_t>(i)]);
    const Kr::OsExitStatus status =
        Supervisor(command, readFile(input.getValue()), seconds.getValue()).supervise();
    std::cout << words[static_cast<std::size_t>(first)] << ": " << status << '\n';
    return status.isSuccess() ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    try
    {
        const Kr::OsSettingsStore store("Software\\libKRbase\\Supervise");
        if (Kr::InSettings::answerHelp(argc, argv, std::cout))
            return 0;
        Kr::InSettings::refuseUnknownOptions(argc, argv);
        const Kr::InInitGuard guard(argc, argv);
        return run();
    }
    catch (const Kr::ExBase& error)
    {
        std::cerr << "supervise: " << error.getReason() << '\n';
        return 1;
    }
}

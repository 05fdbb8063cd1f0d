#include "arguments.h"

#include <base/inOptionParser.h>
#include <base/osDir.h>
#include <base/osEnv.h>
#include <base/osFile.h>
#include <base/osTerminal.h>

#include <fstream>
#include <string_view>

namespace KrLog
{

namespace
{

constexpr const char* helpText =
    R"(usage: kr-log [OPTION ...] [FILE ...]
       kr-log summary [OPTION ...] [FILE ...]
       kr-log recover FOLDER

Shows the records of logs, of either form, as one, in the order of their times. A FILE comes with the
files that it was rotated into (FILE.1, ...). A folder stands for its files *.log; without FILE it is
the folder that KR_LOG_DIR names.

  summary      how many messages a second of each group and level, and how many were lost
  recover      writes into the logs of FOLDER what processes have left there that were killed while
               KR_LOG_SURVIVE was on; those that live are not touched

  -f           go on with what is written from now on, also when a file is rotated
  -l LEVEL     that level and more severe ones: InternalError, FatalError, Error, Warning,
               Informational, Tracing; or Profiling, which is by itself
  -g GROUP     that group; * and ? stand for any text and any character
  -t THREAD    that thread: its number, its name, or main; 4711:main for that of one process
  -s MOMENT    since then: the beginning of a time in UTC (2026-11-21T07:33), or how long ago it
               was (90s, 15m, 2h, 1d)
  -u MOMENT    until then, that second, minute, ... included
  -j           one JSON object in a line instead of columns
  -c WHEN      colours: always, never, or auto, the default: on a terminal
  -n           not the rotated files
  --help, --version

-l, -g and -t may be given several times: what one of them lets through is shown.
)";

[[noreturn]] void refuse(const std::string& problem)
{
    throw UsageError(problem);
}

const char* getVariable(const char* name)
{
    const char* const value = Kr::OsEnv::getVariable(name);
    return value != nullptr ? value : "";
}

bool wantsColours(const std::string& when)
{
    if (when != "auto" && when != "always" && when != "never")
        refuse("-c takes always, never or auto, not '" + when + "'");
    const std::string terminal = getVariable("TERM");
    const bool knowsColours =
        !terminal.empty() && terminal != "dumb" && *getVariable("NO_COLOR") == '\0';
    return when == "always" || (when == "auto" && knowsColours &&
                                Kr::OsTerminal::isTerminal(Kr::OsTerminal::StandardOutput));
}

/// An option without a value; false if it has one.
bool takeSwitch(Arguments& arguments, int option)
{
    bool* const switches[] = {&arguments.isFollowing, &arguments.isJson, &arguments.withRotated};
    const std::size_t at = std::string_view("fjn").find(static_cast<char>(option));
    if (at == std::string_view::npos)
        return false;
    *switches[at] = option != 'n';
    return true;
}

/// False if there is no such level or moment.
bool takeValue(Arguments& arguments, int option, const std::string& value)
{
    Filter& filter = arguments.filter;
    switch (option)
    {
    case 'c':
        arguments.isColoured = wantsColours(value);
        return true;
    case 'g':
        filter.addGroup(value);
        return true;
    case 't':
        filter.addThread(value);
        return true;
    case 'l':
        return filter.addLevel(value);
    case 's':
        return filter.setSince(value);
    default:
        return filter.setUntil(value);
    }
}

void takeOption(Arguments& arguments, int option, const char* value)
{
    if (takeSwitch(arguments, option))
        return;
    const std::string name = {'-', static_cast<char>(option)};
    if (value == nullptr)
        refuse(name + " needs a value");
    if (!takeValue(arguments, option, value))
        refuse(name + ": there is no " + (option == 'l' ? "level" : "moment") + " '" + value + "'");
}

/// Long options are these two alone.
bool takeLongOption(Arguments& arguments, const std::string& word)
{
    if (word == "--help")
        arguments.command = Arguments::help;
    else if (word == "--version")
        arguments.command = Arguments::version;
    else
        return false;
    return true;
}

/// Options may also stand behind and between the files.
void takeWords(Arguments& arguments, int argc, char** argv)
{
    while (argc > 1)
    {
        Kr::InOptionParser parser(argc, argv, "fjnc:g:t:l:s:u:");
        for (int option = parser.getOption(); option != -1; option = parser.getOption())
        {
            if (option == '?')
                refuse(std::string("there is no option '") + argv[parser.getArgumentIndex()] + "'");
            takeOption(arguments, option, parser.getValue());
        }
        const int next = parser.getArgumentIndex();
        const std::string last = argv[next - 1];
        if (next > 1 && last.compare(0, 2, "--") == 0 && last != "--")
        {
            if (takeLongOption(arguments, last))
                return;
            refuse("there is no option '" + last + "'");
        }
        const bool areFilesOnly = next > 1 && last == "--";
        if (next >= argc || areFilesOnly)
        {
            arguments.files.insert(arguments.files.end(), argv + next, argv + argc);
            return;
        }
        arguments.files.emplace_back(argv[next]);
        argc -= next;
        argv += next;
    }
}

void addFolder(std::vector<std::string>& files, const std::string& folder)
{
    const std::size_t before = files.size();
    const auto logs = Kr::OsDirFilter::name("*.log");
    for (const Kr::OsFilePath& path : Kr::OsDir(folder).list(logs))
        files.push_back(path.getStdPath().string());
    if (files.size() == before)
        refuse("there is no log in '" + folder + "'");
}

/// Replaces folders by what is in them, and makes sure that what is named is there.
void findFiles(Arguments& arguments)
{
    std::vector<std::string> words;
    words.swap(arguments.files);
    if (words.empty() && *getVariable("KR_LOG_DIR") != '\0')
        words.emplace_back(getVariable("KR_LOG_DIR"));
    if (words.empty())
        refuse("name a FILE or a folder, or set KR_LOG_DIR");
    for (const std::string& word : words)
    {
        if (!word.empty() && Kr::OsDir(word).exists())
            addFolder(arguments.files, word);
        else if (arguments.isFollowing || std::ifstream(word, std::ios::binary))
            arguments.files.push_back(word);
        else
            refuse("'" + word + "' cannot be read");
    }
}

} // namespace

Arguments Arguments::read(int argc, char** argv)
{
    Arguments arguments;
    arguments.isColoured = wantsColours("auto");
    const std::string word = argc > 1 ? argv[1] : "";
    if (word == "summary" || word == "recover")
    {
        arguments.command = word == "summary" ? summary : recover;
        --argc;
        ++argv;
    }
    takeWords(arguments, argc, argv);
    if (arguments.command == recover && arguments.files.size() != 1)
        refuse("recover takes one FOLDER");
    if (arguments.command == summary && arguments.isFollowing)
        refuse("a summary cannot follow");
    if (arguments.command == show || arguments.command == summary)
        findFiles(arguments);
    return arguments;
}

const char* Arguments::getHelp()
{
    return helpText;
}

} // namespace KrLog

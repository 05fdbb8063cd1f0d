#include <base/internal/testing/testOptions.h>

#include <base/internal/errors/nearestNames.h>
#include <base/internal/testing/testSettings.h>
#include <base/osFileReader.h>
#include <base/raise.h>
#include <base/testEx.h>

#include <charconv>
#include <cstring>
#include <iomanip>
#include <ostream>
#include <random>
#include <sstream>
#include <string_view>

namespace Kr
{

namespace
{

using Text = const std::string&;

[[noreturn]] void raiseNeeded(const char* option, const char* needed)
{
    raise<TestEx::ExBadValue>(KR_HERE, option, needed);
}

template <class Number>
Number toNumber(const char* option, Text text, Number least, const char* needed)
{
    Number number{};
    const char* const end = text.data() + text.size();
    const std::from_chars_result read = std::from_chars(text.data(), end, number);
    if (read.ec != std::errc() || read.ptr != end || !(number >= least))
        raiseNeeded(option, needed);
    return number;
}

/// The place of the text among the choices.
template <class Choice>
Choice toChoice(const char* option, Text text, const char* const (&choices)[3])
{
    for (int i = 0; i < 3; ++i)
        if (text == choices[i])
            return static_cast<Choice>(i);
    const std::string needed = std::string(choices[0]) + ", " + choices[1] + " or " + choices[2];
    raiseNeeded(option, needed.c_str());
}

OsFilePath toPath(const char* option, Text text)
{
    if (text.empty())
        raiseNeeded(option, "the name of a file");
    return TestOptions::locate(text);
}

/// A pattern; or behind a dash, an exclusion.
void takePattern(TestOptions& options, Text word)
{
    const bool isExclusion = word.size() > 1 && word[0] == '-';
    (isExclusion ? options.exclusions : options.patterns).push_back(word.substr(isExclusion));
}

std::string readFile(const OsFilePath& path)
{
    try
    {
        OsFileReader reader(path);
        std::string text;
        char block[4096];
        while (const unsigned long count = reader.read(block, sizeof block))
            text.append(block, count);
        return text;
    }
    catch (const ExBase& error)
    {
        raise<TestEx::ExBadFile>(KR_HERE, path.getChars(), error.getReason());
    }
}

/// A pattern or exclusion in each line; what stands behind "#" is for people.
void takeFile(TestOptions& options, const OsFilePath& path)
{
    std::istringstream lines(readFile(path));
    for (std::string line; std::getline(lines, line);)
    {
        std::istringstream words(line.substr(0, line.find('#')));
        for (std::string word; words >> word;)
            takePattern(options, word);
    }
}

void takeSeed(TestOptions& options, Text value)
{
    options.isShuffled = true;
    options.seed = value.empty() ? std::random_device()()
                                 : toNumber<std::uint32_t>("--shuffle", value, 0,
                                                           "a number of 32 bits, or none");
}

struct Option
{
    enum Value
    {
        None,
        Optional,
        Needed
    };

    const char* name;
    Value value;
    const char* shown;
    const char* help;
    void (*take)(TestOptions& options, Text value);
};

const Option known[] = {
    {"--list", Option::None, "", "show the names of the tests and run none",
     [](TestOptions& options, Text) { options.doesList = true; }},
    {"--tests", Option::Needed, "=FILE", "take patterns from a file; # begins a comment",
     [](TestOptions& options, Text value) { takeFile(options, toPath("--tests", value)); }},
    {"--isolate", Option::None, "", "run each group in a process of its own",
     [](TestOptions& options, Text) { options.isIsolated = true; }},
    {"--limit", Option::Needed, "=SECONDS", "for such a process, after which it is ended",
     [](TestOptions& options, Text value)
     { options.limit = toNumber("--limit", value, 0., "a number of seconds"); }},
    {"--repeat", Option::Needed, "=COUNT", "run everything so often",
     [](TestOptions& options, Text value)
     { options.repeat = toNumber("--repeat", value, 1U, "a number from 1 on"); }},
    {"--shuffle", Option::Optional, "[=SEED]", "change the order; the seed is shown",
     [](TestOptions& options, Text value) { takeSeed(options, value); }},
    {"--stop", Option::None, "", "stop at the first failure",
     [](TestOptions& options, Text) { options.stopsAtFailure = true; }},
    {"--leaks", Option::Needed, "=off|report|fail", "what becomes of what a test leaves behind",
     [](TestOptions& options, Text value) {
         options.leaks = toChoice<TestOptions::Leaks>("--leaks", value, {"off", "report", "fail"});
     }},
    {"--tap", Option::None, "", "write for the Test Anything Protocol",
     [](TestOptions& options, Text) { options.isTap = true; }},
    {"--junit", Option::Needed, "=FILE", "write a file of JUnit's form, too",
     [](TestOptions& options, Text value) { options.junit = toPath("--junit", value); }},
    {"--colour", Option::Needed, "=auto|always|never", "by default on terminals only",
     [](TestOptions& options, Text value)
     {
         options.colour =
             toChoice<TestOptions::Colour>("--colour", value, {"auto", "always", "never"});
     }},
    {"--results", Option::Needed, nullptr, nullptr, // between the harness's own processes
     [](TestOptions& options, Text value) { options.results = value; }},
};

[[noreturn]] void raiseUnknown(Text name)
{
    Vector<std::string> names;
    for (const Option& option : known)
        if (option.shown != nullptr)
            names.emplace_back(option.name);
    raise<TestEx::ExUnknownOption>(KR_HERE, name.c_str(), quoteNearest(name, names).c_str());
}

void takeOption(TestOptions& options, Text word)
{
    const std::size_t sign = word.find('=');
    const std::string name = word.substr(0, sign);
    for (const Option& option : known)
    {
        if (name != option.name)
            continue;
        if (option.value == Option::None && sign != std::string::npos)
            raiseNeeded(option.name, "no value");
        if (option.value == Option::Needed && sign == std::string::npos)
            raiseNeeded(option.name, "a value behind a =");
        option.take(options, sign == std::string::npos ? std::string() : word.substr(sign + 1));
        return;
    }
    raiseUnknown(name);
}

} // namespace

TestOptions TestOptions::parse(const std::vector<std::string>& words)
{
    TestOptions options;
    bool areOptionsOver = false;
    for (const std::string& word : words)
        if (!areOptionsOver && word == "--")
            areOptionsOver = true;
        else if (!areOptionsOver && word.compare(0, 2, "--") == 0)
            takeOption(options, word);
        else
            takePattern(options, word);
    return options;
}

void TestOptions::printHelp(std::ostream& os)
{
    os << "\nTests:\n"
          "  PATTERN ...             run these, as 'group', 'group.test' or 'group.a*'\n"
          "  -PATTERN ...            but not these\n";
    for (const Option& option : known)
        if (option.shown != nullptr)
            os << "  " << std::left << std::setw(24)
               << std::string(option.name) + option.shown + ' ' << option.help << '\n';
}

OsFilePath TestOptions::locate(const std::string& name)
{
    const OsFilePath path(name);
    const std::string& directory = TestSettings::getInstance().directory;
    return path.isAbsolute() || directory.empty() ? path : OsFilePath(directory) + path;
}

} // namespace Kr

#include <base/inSettings.h>

#include <base/assert.h>
#include <base/inEx.h>
#include <base/inPackageInit.h>
#include <base/inVariableEx.h>
#include <base/internal/errors/nearestNames.h>
#include <base/internal/init/inCommandLine.h>
#include <base/internal/init/inNameTable.h>
#include <base/internal/init/inNamedVariable.h>
#include <base/internal/init/inReport.h>
#include <base/raise.h>
#include <base/vector.h>

#include <algorithm>
#include <iomanip>
#include <map>
#include <utility>

namespace Kr
{

namespace
{

constexpr std::string_view helpOption = "--help";
constexpr std::string_view negation = "--no-";

// --- the table of the help ----------------------------------------------------------------------

struct HelpLine
{
    std::string options;
    std::string environmentNames;
    std::string defaultText;
    std::string meaning;
};

using HelpTable = Vector<HelpLine>;

std::string join(const Vector<std::string>& texts)
{
    std::string list;
    for (const std::string& text : texts)
        list += (list.empty() ? "" : ", ") + text;
    return list;
}

std::string describeOption(const std::string& option, bool isFlag)
{
    return isFlag ? "--[no-]" + option.substr(2) : option + "=VALUE";
}

HelpLine getHelpLine(const std::string& handle, const InNames& names)
{
    const InNamedVariable& variable = *names.variable;
    Vector<std::string> options = names.options;
    if (options.empty())
        options.push_back("--" + handle);
    for (std::string& option : options)
        option = describeOption(option, variable.isFlag());
    std::string meaning = variable.getHelp();
    if (!variable.isFlag())
        meaning += " (" + variable.getExpectedForm() + ")";
    return {join(options), join(names.environmentNames),
            variable.isDefaultValid() ? variable.getDefaultText() : "required", meaning};
}

std::map<std::string, HelpTable> collectHelp()
{
    std::map<std::string, HelpTable> help;
    for (const auto& [handle, names] : InNameTable::getInstance().getHandles())
    {
        if (names.variable == nullptr)
            continue;
        const auto* const package =
            dynamic_cast<const InPackageInit*>(&names.variable->getPackage());
        help[package != nullptr ? package->getName() : ""].push_back(getHelpLine(handle, names));
    }
    return help;
}

int getWidth(const HelpTable& lines, std::string HelpLine::*column)
{
    std::size_t width = 0;
    for (const HelpLine& line : lines)
        width = std::max(width, (line.*column).size());
    return static_cast<int>(width);
}

void writeTable(std::ostream& os, HelpTable lines)
{
    lines.insert(lines.begin(), {"Option", "Environment", "Default", "Meaning"});
    const int options = getWidth(lines, &HelpLine::options);
    const int environmentNames = getWidth(lines, &HelpLine::environmentNames);
    const int defaults = getWidth(lines, &HelpLine::defaultText);
    for (const HelpLine& line : lines)
        os << "  " << std::left << std::setw(options) << line.options << "  "
           << std::setw(environmentNames) << line.environmentNames << "  " << std::setw(defaults)
           << line.defaultText << "  " << line.meaning << '\n';
}

/// The file's name of the program, without its folders.
std::string_view getProgram(const char* programName)
{
    const Vector<char*>& words = InCommandLine::getInstance().getWords();
    if (programName == nullptr && !words.empty())
        programName = words.front();
    const std::string_view path = programName != nullptr ? programName : "program";
    return path.substr(path.find_last_of("/\\") + 1); // all of it when there are no folders
}

// --- options ------------------------------------------------------------------------------------

bool isKnown(std::string_view option)
{
    const InNameTable& table = InNameTable::getInstance();
    const InNames* names = table.findOption(option);
    if (names != nullptr)
        return names->variable != nullptr;
    if (option.substr(0, negation.size()) != negation)
        return option == helpOption;
    names = table.findOption("--" + std::string(option.substr(negation.size())));
    return names != nullptr && names->variable != nullptr && names->variable->isFlag();
}

Vector<std::string> getKnownOptions()
{
    Vector<std::string> known{std::string(helpOption)};
    for (const auto& [handle, names] : InNameTable::getInstance().getHandles())
    {
        if (names.variable == nullptr)
            continue;
        const std::size_t first = known.size();
        known.insert(known.end(), names.options.begin(), names.options.end());
        known.push_back("--" + handle);
        for (std::size_t i = known.size(); names.variable->isFlag() && i-- > first;)
            known.push_back(std::string(negation) + known[i].substr(2));
    }
    return known;
}

/// The known option that is most like the text; empty when none is much like it.
std::string findNearest(std::string_view option)
{
    constexpr std::size_t longest = 256; // nobody means an option by a longer text
    std::string nearest;
    if (option.size() > longest)
        return nearest;
    std::size_t least = option.size() / 3; // a third of the characters may be wrong
    for (const std::string& known : getKnownOptions())
    {
        const std::size_t distance = getEditDistance(option, known);
        if (distance > least || (distance == least && !nearest.empty()))
            continue;
        least = distance;
        nearest = known;
    }
    return nearest;
}

/// The options among the words, up to the first "--", without their values.
Vector<std::string_view> getOptions(int argc, const char* const* argv)
{
    KR_ASSERT(argc <= 0 || argv != nullptr);
    Vector<std::string_view> options;
    for (int i = 1; i < argc; ++i)
    {
        KR_ASSERT(argv[i] != nullptr);
        const std::string_view word = argv[i];
        if (word == "--")
            break;
        if (InCommandLine::isOption(word))
            options.push_back(InCommandLine::getOption(word));
    }
    return options;
}

void dumpOwnerless(std::ostream& os, const std::string& handle, const InNames& names)
{
    os << handle << ": no such setting\n";
    for (const std::string& option : names.options)
        os << "    meant by option " << option << '\n';
    for (const std::string& name : names.environmentNames)
        os << "    meant by environment variable " << name << '\n';
    if (names.overrideText.has_value())
        os << "    meant by an override\n";
}

} // namespace

bool InSettings::answerHelp(int argc, const char* const* argv, std::ostream& os)
{
    const Vector<std::string_view> options = getOptions(argc, argv);
    if (std::find(options.begin(), options.end(), helpOption) == options.end())
        return false;
    printHelp(os, argv[0]);
    return true;
}

void InSettings::refuseUnknownOptions(int argc, const char* const* argv)
{
    for (const std::string_view option : getOptions(argc, argv))
    {
        if (isKnown(option))
            continue;
        const std::string nearest = findNearest(option);
        raise<InVariableEx::ExUnknownOption>(KR_HERE, std::string(option).c_str(),
                                             nearest.empty() ? nullptr : nearest.c_str());
    }
}

bool InSettings::isHelpRequested()
{
    return !InCommandLine::getInstance().find(helpOption).empty();
}

void InSettings::printHelp(std::ostream& os, const char* programName)
{
    InReport report;
    report << "Usage: " << getProgram(programName) << " [OPTION]... [WORD]...\n"
           << "Settings of every program:\n";
    writeTable(report, {{std::string(helpOption), "", "", "Show this help"},
                        {"--", "", "", "The options end here"},
                        {"", "KR_DEBUG_INITIALIZE", "", "Report each step of the start and stop"},
                        {"", "KR_TRACE_OPTIONS", "none", "What is shown of every exception"}});
    for (const auto& [package, lines] : collectHelp())
    {
        report << "Settings of package '" << package << "':\n";
        writeTable(report, lines);
    }
    report.writeTo(os);
}

void InSettings::dumpAll(std::ostream& os)
{
    InReport report;
    for (const auto& [handle, names] : InNameTable::getInstance().getHandles())
    {
        if (names.variable != nullptr)
            names.variable->dump(report);
        else
            dumpOwnerless(report, handle, names);
    }
    report.writeTo(os);
}

void InSettings::setOverride(const char* handle, const char* text)
{
    KR_ASSERT(handle != nullptr);
    KR_ASSERT(text != nullptr);
    InNameTable& table = InNameTable::getInstance();
    const InNamedVariable* const variable = table.getNames(handle).variable;
    if (variable != nullptr && variable->isInitialized())
        raise<InEx::ExVariableAlreadyInitialized>(KR_HERE, handle);
    table.setOverride(handle, text);
}

InSettingsStore* InSettings::setStore(InSettingsStore* store) noexcept
{
    return InNameTable::getInstance().setStore(store);
}

void InSettings::store(const InPackageInitBase& package)
{
    for (const auto& [handle, names] : InNameTable::getInstance().getHandles())
        if (names.variable != nullptr && &names.variable->getPackage() == &package)
            names.variable->store();
}

} // namespace Kr

// Initialisation variables and context aliases, started by hand: no pass of the manager runs here,
// so that aliases can be defined by each test. Scenarios of start-up are in
// scenarios/variables.cpp.

#include "ownSettings.h"
#include "raised.h"
#include "variablesFixture.h"

#include <base/inContextAlias.h>
#include <base/inEx.h>
#include <base/inVariable.h>
#include <base/inVariableEx.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <iomanip>
#include <sstream>
#include <utility>

namespace
{

enum class Shading
{
    Flat,
    Smooth,
    Secret // has no name
};

const Kr::InValueForm<Shading> shadingForm{
    {"flat", Shading::Flat}, {"smooth", Shading::Smooth}, {"gouraud", Shading::Smooth}};

std::vector<std::string> remainingWords()
{
    const Kr::Vector<char*> words = Kr::InContextAliasMgrBase::getRemainingWords();
    return {words.begin(), words.end()};
}

// --- forms --------------------------------------------------------------------------------------

using Texts = std::vector<std::string>;
using Pairs = std::vector<std::pair<std::string, std::string>>;

/// Checks the good texts, with what they are written as, and the malformed ones.
template <class T>
void expectRead(const Kr::InValueForm<T>& form, const Pairs& good, const Texts& malformed)
{
    for (const auto& [text, written] : good)
    {
        T value{};
        T back{};
        EXPECT_TRUE(form.parse(text, value)) << text;
        EXPECT_EQ(form.write(value), written) << text;
        EXPECT_TRUE(form.parse(written, back) && back == value) << text;
    }
    for (const std::string& text : malformed)
    {
        T value{};
        EXPECT_FALSE(form.parse(text, value)) << text;
        EXPECT_EQ(value, T{}) << text;
    }
}

const std::string nul(1, '\0');

TEST(ValueForm, ReadsWholeTextsOrNothing)
{
    expectRead<bool>({}, {{"true", "true"}, {"YES", "true"}, {"On", "true"}, {"1", "true"}},
                     {"", "2", "true ", "tru", "truee", "on" + nul});
    expectRead<bool>({}, {{"false", "false"}, {"no", "false"}, {"OFF", "false"}, {"0", "false"}},
                     {});
    expectRead<std::int32_t>({},
                             {{"0", "0"},
                              {"-0", "0"},
                              {"007", "7"},
                              {"2147483647", "2147483647"},
                              {"-2147483648", "-2147483648"}},
                             {"2147483648", "-2147483649", "", "-", "+1", " 1", "1 ", "1.0", "0x10",
                              "1" + nul, std::string(1 << 20, '9')});
    expectRead<std::int32_t>({1, 64}, {{"1", "1"}, {"64", "64"}}, {"0", "65"});
    expectRead<signed char>({}, {{"-128", "-128"}}, {"128"});
    expectRead<unsigned short>({}, {{"65535", "65535"}}, {"65536"});
    expectRead<std::uint32_t>({}, {{"4294967295", "4294967295"}}, {"4294967296", "-1", "-0"});
    expectRead<unsigned long>({}, {{"4294967295", "4294967295"}}, {"-1"});
    const char *lowest = "-9223372036854775808", *highest = "18446744073709551615";
    expectRead<std::int64_t>({}, {{lowest, lowest}}, {"9223372036854775808"});
    expectRead<std::uint64_t>({}, {{highest, highest}}, {"18446744073709551616"});
    expectRead<float>({}, {{"0.10", "0.1"}, {"1e-99", "0"}}, {"1e39", "1e-99x"});
    const char* const largest = "1.7976931348623157e+308";
    expectRead<double>(
        {},
        {{"-1e3", "-1000"},
         {".5", "0.5"},
         {"5.", "5"},
         {largest, largest},
         {"4.9406564584124654e-324", "5e-324"},
         {"1e-400", "0"},
         {"-0.01e-400", "-0"}},
        {"1.8e308", "inf", "-infinity", "nan", "", "e5", "1e", "1,5", "+1", "0x1p3", "1.5f"});
    expectRead<double>({0., HUGE_VAL}, {{"inf", "inf"}}, {"-1", "nan", "1e400"});
    expectRead<std::string>({}, {{"", ""}, {" two words ", " two words "}}, {});
    expectRead<Shading>(shadingForm, {{"smooth", "smooth"}, {"gouraud", "smooth"}},
                        {"Smooth", "", "2", "#2"});
}

TEST(ValueForm, SaysWhatItExpects)
{
    using Number = Kr::InValueForm<double>;
    EXPECT_EQ(Kr::InValueForm<std::uint32_t>().getExpected(), "an integer from 0 to 4294967295");
    EXPECT_EQ(Number(.5, std::numeric_limits<double>::max()).getExpected(),
              "a number of at least 0.5");
    EXPECT_EQ(Number(-std::numeric_limits<double>::max(), 2.).getExpected(),
              "a number of at most 2");
    EXPECT_EQ(Number(0., 1.).getExpected(), "a number from 0 to 1");
}

// --- the command line ---------------------------------------------------------------------------

/// A package with a variable of every kind.
struct Settings
{
    Package package;
    Kr::InContextAlias samplesAlias{"t.samples", "--samples", "KR_VARIABLES_TEST_UNSET"};
    Kr::InContextAlias oldSamplesAlias{"t.samples", "--rays"};
    Kr::InContextAlias titleAlias{"t.title", "--title"};
    Kr::InContextAlias vsyncAlias{"t.vsync", "--vsync"};
    Kr::InVariable<std::int32_t> samples{package, "t.samples", 4, "Samples per pixel", {1, 64}};
    Kr::InVariable<double> scale{package, "t.scale", 1., "Scale of the scene"};
    Kr::InVariable<bool> vsync{package, "t.vsync", true, "Wait for the display"};
    Kr::InVariable<std::string> title{package, "t.title", "untitled", "Title of the window"};
    Kr::InVariable<Shading> shading{package, "t.shading", Shading::Smooth, "Shading", shadingForm};

    std::string toString() const
    {
        std::ostringstream text;
        text << samples.getValue() << ' ' << scale.getValue() << ' ' << vsync.getValue() << ' '
             << title.getValue() << ' ' << static_cast<int>(shading.getValue());
        return text.str();
    }
};

TEST(CommandLine, GivesValuesAndLeavesTheOtherWords)
{
    const struct
    {
        Texts words;
        const char* values;
        Texts remaining;
    } table[] = {
        {{}, "4 1 1 untitled 1", {}},
        {{"--samples=8", "--t.scale", "-2.5", "x"}, "8 -2.5 1 untitled 1", {"x"}},
        {{"--t.samples", "8", "--t.shading=flat"}, "8 1 1 untitled 0", {}},
        {{"--samples=8", "--rays=9", "--t.samples=10"}, "10 1 1 untitled 1", {}},
        {{"--t.samples=10", "--rays=9", "--samples=8"}, "8 1 1 untitled 1", {}},
        {{"--no-vsync", "off"}, "4 1 0 untitled 1", {"off"}},
        {{"--no-t.vsync", "--vsync"}, "4 1 1 untitled 1", {}},
        {{"--vsync", "--t.vsync=No"}, "4 1 0 untitled 1", {}},
        {{"--title="}, "4 1 1  1", {}},
        {{"--title=--a=b"}, "4 1 1 --a=b 1", {}},
        {{"--title", "-"}, "4 1 1 - 1", {}},
        {{"--sample=8", "-s", "--no-samples", "--Samples=3", "-", ""},
         "4 1 1 untitled 1",
         {"--sample=8", "-s", "--no-samples", "--Samples=3", "-", ""}},
        {{"a", "--samples=8", "b", "--", "--samples=9", "--title"},
         "8 1 1 untitled 1",
         {"a", "b", "--", "--samples=9", "--title"}},
    };
    for (const auto& row : table)
    {
        SCOPED_TRACE(testing::PrintToString(row.words));
        Settings settings;
        const CommandLine commandLine(row.words);
        std::strcpy(Kr::InContextAliasMgrBase::args()[0], "--rays"); // the name is no option
        settings.package.start();
        EXPECT_EQ(settings.toString(), row.values);
        Texts expected{"--rays"};
        expected.insert(expected.end(), row.remaining.begin(), row.remaining.end());
        EXPECT_EQ(remainingWords(), expected);
    }
}

TEST(CommandLine, RubbishIsAnError)
{
    const struct
    {
        Texts words;
        std::string reason;
    } table[] = {
        {{"--samples=many"},
         "Variable 't.samples': the value 'many' of option --samples is malformed, expected an "
         "integer from 1 to 64."},
        {{"--samples=99", "--samples=8"}, // a mistake, even if a later value hides it
         "Variable 't.samples': the value '99' of option --samples is malformed, expected an "
         "integer from 1 to 64."},
        {{"--samples=" + std::string(1 << 20, '1')}, // cut
         "Variable 't.samples': the value '" + std::string(256, '1') +
             "' of option --samples is malformed, expected an integer from 1 to 64."},
        {{"--t.scale="},
         "Variable 't.scale': the value '' of option --t.scale is malformed, expected a number."},
        {{"--no-vsync=1"},
         "Variable 't.vsync': the value '1' of option --no-vsync (which takes none) is malformed, "
         "expected true, yes, on, 1, false, no, off or 0."},
    };
    for (const auto& row : table)
    {
        Settings settings;
        const CommandLine commandLine(row.words);
        EXPECT_EQ(reasonOf<Kr::InVariableEx::ExMalformedValue>([&] { settings.package.start(); }),
                  row.reason);
    }

    for (const Texts& words : {Texts{"--samples"}, Texts{"--samples", "--vsync"},
                               Texts{"--samples", "--"}, Texts{"--samples=8", "--samples"}})
    {
        Settings settings;
        const CommandLine commandLine(words);
        EXPECT_EQ(reasonOf<Kr::InVariableEx::ExMissingValue>([&] { settings.package.start(); }),
                  "Variable 't.samples': option --samples needs a value, an integer from 1 to 64.");
    }
}

/// What the help of a program with these words begins with; empty when it is not asked for.
std::string answerTo(std::vector<const char*> words)
{
    words.insert(words.begin(), "folder/viewer");
    std::ostringstream text;
    const int count = static_cast<int>(words.size());
    const bool isAnswered = Kr::InSettings::answerHelp(count, words.data(), text);
    EXPECT_EQ(isAnswered, !text.str().empty());
    return text.str().substr(0, text.str().find('\n'));
}

TEST(CommandLine, HelpCanBeAskedFor)
{
    EXPECT_EQ(answerTo({"x", "--help"}), "Usage: viewer [OPTION]... [WORD]...");
    EXPECT_EQ(answerTo({"--helpless", "--", "--help"}), "");
    EXPECT_FALSE(Kr::InSettings::isHelpRequested());
    const CommandLine commandLine({"x", "--help"});
    EXPECT_TRUE(Kr::InSettings::isHelpRequested());
}

/// The reason why a program with this word is refused.
std::string refusalOf(const char* word)
{
    const char* const words[] = {"--program", "-x", "x", word, "--", "--unknown"};
    return reasonOf<Kr::InVariableEx::ExUnknownOption>(
        [&] { Kr::InSettings::refuseUnknownOptions(6, words); });
}

TEST(CommandLine, UnknownOptionsCanBeErrors)
{
    const Settings settings;
    const Kr::InContextAlias ownerless("t.nobody", "--nobody");
    for (const char* known : {"--help", "--samples", "--rays=many", "--t.samples=8", "--vsync=off",
                              "--no-vsync", "--no-t.vsync", "--t.title"})
        EXPECT_EQ(refusalOf(known), "nothing raised") << known;
    EXPECT_EQ(refusalOf("--smaples=8"), "Unknown option '--smaples': did you mean '--samples'?");
    EXPECT_EQ(refusalOf("--no-vsnc"), "Unknown option '--no-vsnc': did you mean '--no-vsync'?");
    EXPECT_EQ(refusalOf("--no-rays"), "Unknown option '--no-rays': did you mean '--rays'?");
    for (const char* unknown : {"--nobody", "--verbose"})
        EXPECT_EQ(refusalOf(unknown), std::string("Unknown option '") + unknown + "'.");
    EXPECT_EQ(refusalOf(std::string(1 << 20, '-').c_str()),
              "Unknown option '" + std::string(256, '-') + "'.");
}

/// What a report writes, whatever the format settings of its stream.
std::string reportOf(void (*report)(std::ostream&))
{
    std::ostringstream text;
    text << std::hex << std::boolalpha << std::setfill('*') << std::setw(99);
    report(text);
    return withoutLibrary(text.str());
}

void printHelp(std::ostream& os)
{
    Kr::InSettings::printHelp(os, "C:\\folder\\viewer.exe");
}

// --- access, overrides, names -------------------------------------------------------------------

TEST(Variable, ThatHasNoValidDefaultMustBeGiven)
{
    Package package;
    const Kr::InVariable<std::uint32_t> seed(package, "t.seed", 0, "", {1u, 9u});
    const Kr::InVariable<Shading> shading(package, "t.shading", Shading::Secret, "", shadingForm);
    const CommandLine commandLine({"--t.seed=7"});
    package.start();
    EXPECT_EQ(seed.getValue(), 7u);
    EXPECT_THROW(shading.getValue(), Kr::InEx::ExInvalidObject);
    EXPECT_EQ(reportOf(&Kr::InSettings::dumpAll),
              "t.seed = '7', from option --t.seed\n"
              "    not the default: '0', expected an integer from 1 to 9\n"
              "t.shading: invalid\n"
              "    not the default: '#2', expected one of flat, smooth, gouraud\n");
    EXPECT_NE(reportOf(printHelp).find("--t.seed=VALUE                  required  "),
              std::string::npos);
}

TEST(Override, ComesBeforeEveryOtherSource)
{
    Kr::InSettings::setOverride("t.samples", "5"); // the variable does not exist yet
    Kr::InSettings::setOverride("t.samples", "16");
    Settings settings;
    EXPECT_THROW(settings.samples.getSource(), Kr::InEx::ExUninitializedObject);
    settings.shading.setOverride(Shading::Flat);
    settings.title.setOverride("over");
    const CommandLine commandLine({"--samples=8", "--t.shading=smooth"});
    settings.package.start();
    EXPECT_EQ(settings.toString(), "16 1 1 over 0");
    EXPECT_EQ(settings.samples.getSource(), Kr::InNamedVariable::Source::Override);
    EXPECT_EQ(settings.scale.getSource(), Kr::InNamedVariable::Source::Default);
    EXPECT_EQ(remainingWords(), Texts{"program"}) << "a word that lost is taken all the same";

    const char* const reason =
        "Trying to override an InVariable that is already initialized: 't.samples'.";
    using Initialized = Kr::InEx::ExVariableAlreadyInitialized;
    EXPECT_EQ(reasonOf<Initialized>([&] { settings.samples.setOverride(1); }), reason);
    EXPECT_EQ(reasonOf<Initialized>([] { Kr::InSettings::setOverride("t.samples", "1"); }), reason);
    EXPECT_THROW(Kr::InSettings::setOverride(nullptr, "1"), Kr::ExInternalError);
    EXPECT_THROW(Kr::InSettings::setOverride("t.samples", nullptr), Kr::ExInternalError);
}

TEST(Override, IsCheckedAndConsumedOrDiscarded)
{
    for (const bool isDiscarded : {false, true})
    {
        Kr::InSettings::setOverride("t.samples", "65");
        if (isDiscarded)
            Kr::InVariableBase::clearPendingOverrides();
        else
            EXPECT_EQ(
                reasonOf<Kr::InVariableEx::ExMalformedValue>([&] { Settings().package.start(); }),
                "Variable 't.samples': the value '65' of the override is malformed, expected "
                "an integer from 1 to 64.");
        Settings settings;
        settings.package.start();
        EXPECT_EQ(settings.samples.getValue(), 4);
    }
}

TEST(Handle, BelongsToOneVariable)
{
    Package package;
    const Kr::InVariable<bool> first(package, "t.flag", true, "");
    using InUse = Kr::InEx::ExHandleAlreadyInUse;
    EXPECT_EQ(reasonOf<InUse>([&] { Kr::InVariable<bool>(package, "t.flag", false, ""); }),
              "Trying to register an object with an already used handle: 't.flag'.");
    EXPECT_EQ(package.size(), 1u);

    const Kr::InContextAlias alias("t.flag", "--t.other");
    EXPECT_THROW(Kr::InVariable<bool>(package, "t.other", false, ""), InUse);
    for (const char* handle : {static_cast<const char*>(nullptr), "", "a=b"})
        EXPECT_THROW(Kr::InVariable<bool>(package, handle, false, ""), Kr::ExInternalError);
    EXPECT_EQ(package.size(), 1u);
}

TEST(ContextAlias, BindsANameOnce)
{
    using Defined = Kr::InEx::ExContextAliasAlreadyDefined;
    Package package;
    const Kr::InVariable<bool> other(package, "t.other", true, "");
    const Kr::InContextAlias alias("t.samples", "--samples", "T_SAMPLES");
    EXPECT_EQ(reasonOf<Defined>([] { Kr::InContextAlias("t.samples", "--samples"); }),
              "Trying to re-create an already existing Context Alias: '--samples'.");
    EXPECT_EQ(reasonOf<Defined>([] { Kr::InContextAlias("t.x", "--x", "T_SAMPLES"); }),
              "Trying to re-create an already existing Context Alias: 'T_SAMPLES'.");
    EXPECT_THROW(Kr::InContextAlias("t.samples", "--t.other"), Defined);
    EXPECT_EQ(reportOf(&Kr::InSettings::dumpAll), // nothing is half defined, and nobody forgotten
              "t.other: not started\n"
              "    not the default: 'true'\n"
              "t.samples: no such setting\n"
              "    meant by option --samples\n"
              "    meant by environment variable T_SAMPLES\n");
    Kr::InContextAlias("t.samples", "--x", "T_X"); // gone at once
    Kr::InContextAlias("t.samples", "--x", "T_X");

    const struct
    {
        const char *handle, *option, *environmentName;
    } bad[] = {{nullptr, "--a", nullptr}, {"", "--a", nullptr}, {"h", nullptr, nullptr},
               {"h", "a", nullptr},       {"h", "--", nullptr}, {"h", "-a", nullptr},
               {"h", "--a=", nullptr},    {"h", nullptr, "A=B"}};
    for (const auto& row : bad)
        EXPECT_THROW(Kr::InContextAlias(row.handle, row.option, row.environmentName),
                     Kr::ExInternalError);
}

TEST(ContextAlias, TakesTheNegatedNameOfAFlag)
{
    Package package;
    const Kr::InVariable<bool> cache(package, "cache", true, "");
    const Kr::InVariable<std::int32_t> noCache(package, "no-cache", 0, "");
    const CommandLine commandLine({"--no-cache=3"});
    package.start();
    EXPECT_TRUE(cache.getValue());
    EXPECT_EQ(noCache.getValue(), 3);
}

// --- what is told -------------------------------------------------------------------------------

TEST(Report, CutsAndCleansWhatItQuotes)
{
    Package package;
    const Kr::InVariable<std::string> title(package, "t.title", "untitled", "");
    const Kr::InVariable<bool> vsync(package, "t.vsync", true, "");
    const CommandLine commandLine({"--t.title=" + std::string(300, 't'), "--t.vsync=\x1b[31m"});
    EXPECT_THROW(package.start(), Kr::InVariableEx::ExMalformedValue);
    EXPECT_EQ(reportOf(&Kr::InSettings::dumpAll),
              "t.title = '" + std::string(256, 't') +
                  "'..., from option --t.title\n"
                  "    not the default: 'untitled'\n"
                  "t.vsync: invalid\n"
                  "    not option --t.vsync: '?[31m', malformed\n"
                  "    not the default: 'true'\n");
}

TEST(Report, ListsTheSettingsForHelp)
{
    const Settings settings;
    EXPECT_EQ(reportOf(printHelp), R"(Usage: viewer.exe [OPTION]... [WORD]...
Settings of every program:
  Option  Environment          Default  Meaning
  --help                                Show this help
  --                                    The options end here
          KR_DEBUG_INITIALIZE           Report each step of the start and stop
          KR_TRACE_OPTIONS     none     What is shown of every exception
Settings of package '':
  Option                         Environment              Default   Meaning
  --samples=VALUE, --rays=VALUE  KR_VARIABLES_TEST_UNSET  4         Samples per pixel (an integer from 1 to 64)
  --t.scale=VALUE                                         1         Scale of the scene (a number)
  --t.shading=VALUE                                       smooth    Shading (one of flat, smooth, gouraud)
  --title=VALUE                                           untitled  Title of the window (a text)
  --[no-]vsync                                            true      Wait for the display
)");
}

} // namespace

#include "assertionCheck.h"

#include <base/lgEx.h>
#include <base/lgGroups.h>
#include <base/osEnv.h>

#include <gtest/gtest.h>

#include <chrono>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace
{

using Kr::LgMajorGroup;
using Kr::LgMinorGroup;
using Kr::LgTypes;

constexpr const char* file = "src/base/lgGroups";
constexpr auto noLevel = static_cast<LgTypes::Level>(LgTypes::NUM_LEVELS);

unsigned int levelsOf(const char* name)
{
    return LgMajorGroup::getInstanceForName(name).getLogLevels();
}

std::string listing()
{
    std::ostringstream os;
    LgMajorGroup::printAll(os);
    return os.str();
}

/// What the action writes to the stream.
template <class Action>
std::string outputOf(std::ostream& stream, Action action)
{
    std::ostringstream os;
    std::streambuf* const previous = stream.rdbuf(os.rdbuf());
    action();
    stream.rdbuf(previous);
    return os.str();
}

std::string complaint(const std::string& variable, const std::string& text)
{
    return variable + ": '" + text +
           "' names no level; the levels are Internal Error, Fatal Error, Error, Warning, "
           "Informational, Tracing, Profiling\n";
}

class LogGroups : public testing::Test
{
protected:
    ~LogGroups() override
    {
        if (_open)
            LgMajorGroup::finalize();
        LgMajorGroup::setDefaultThreshold(LgTypes::Warning);
    }

    void open(const char* settings)
    {
        LgMajorGroup::initialize(settings);
        _open = true;
    }

    bool _open = false;
};

TEST_F(LogGroups, LevelsHaveNamesAndMasks)
{
    const struct
    {
        const char* name;
        unsigned int mask;
    } levels[] = {{"Internal Error", 0x80}, {"Fatal Error", 0xC0},   {"Error", 0xE0},
                  {"Warning", 0xF0},        {"Informational", 0xF8}, {"Tracing", 0xFC},
                  {"Profiling", 0x02}};
    ASSERT_EQ(7, LgTypes::NUM_LEVELS);
    for (unsigned int l = 0; l < LgTypes::NUM_LEVELS; ++l)
    {
        const auto level = static_cast<LgTypes::Level>(l);
        EXPECT_STREQ(levels[l].name, LgTypes::getLevelName(level));
        EXPECT_EQ(level, LgTypes::getLevelFromString(levels[l].name));
        EXPECT_EQ(levels[l].mask, LgMajorGroup::getLevelMask(level));
    }
    try
    {
        LgTypes::getLevelFromString("warning");
        FAIL();
    }
    catch (const Kr::LgEx::InvalidLevelString& error)
    {
        EXPECT_STREQ("Invalid level string specified: warning", error.what());
        EXPECT_STREQ("src/base/lgTypes", error.getFileName());
        EXPECT_EQ(58, error.getLineNo());
    }
}

TEST_F(LogGroups, SettingsApplyInTurn)
{
    const struct
    {
        const char* settings;
        unsigned int ui; ///< what the group "UI" has then
        const char* output;
    } cases[] = {
        {"", 0xF0, ""},
        {"UI=Internal Error", 0xC0, ""},
        {"UI=Profiling", 0xF2, ""},
        {"UI=Profiling,UI=Error", 0xE2, ""},
        {"UI=Tracing,UI=Fatal Error", 0xC0, ""},
        {",,Database=Error,,UI=Error,,", 0xE0, ""},
        {"UI=,Error", 0xE0, ""},
        {"UI=Verbose,Database=Error", 0xF0, "Invalid level string specified: Verbose\n"},
        {"UI = Error,UI=Tracing", 0xFC, "Invalid level string specified:  Error\n"},
        {"UI=Error=Tracing", 0xF0, "Invalid level string specified: Error=Tracing\n"},
        {"ui=Error,UI =Error", 0xF0, ""},
    };
    for (const auto& c : cases)
    {
        EXPECT_EQ(c.output, outputOf(std::cout, [&] { LgMajorGroup::initialize(c.settings); }))
            << c.settings;
        EXPECT_EQ(c.ui, levelsOf("UI")) << c.settings;
        LgMajorGroup::finalize();
    }

    open(nullptr);
    const std::string errors = outputOf(
        std::cerr,
        [] { outputOf(std::cout, [] { LgMajorGroup::parse("UI=Verbose,Database=Error"); }); });
    EXPECT_EQ(complaint("KR_LOG_GROUPS", "UI=Verbose"), errors);
    EXPECT_EQ("Major Groups:\n" + std::string(16, ' ') + "Database Tracing\n", listing());
}

TEST_F(LogGroups, ThresholdKeepsProfiling)
{
    open(nullptr);
    LgMajorGroup& group = LgMajorGroup::getInstanceForName("UI");
    EXPECT_EQ(&group, &LgMajorGroup::getInstanceForName(std::string("UI").c_str()));
    group.setLogThreshold(LgTypes::Profiling, true);
    EXPECT_EQ(0xF2U, group.getLogLevels());
    group.setLogThreshold(LgTypes::InternalError, false);
    EXPECT_EQ(0xC2U, group.getLogLevels());

    const LgMinorGroup minor(group, "menus");
    EXPECT_STREQ("menus", minor.getName());
    EXPECT_TRUE(minor.isLevelEnabled(LgTypes::FatalError));
    EXPECT_FALSE(minor.isLevelEnabled(LgTypes::Error));
    EXPECT_TRUE(minor.isLevelEnabled(LgTypes::Profiling));
    group.setLogThreshold(LgTypes::Tracing, true);
    EXPECT_TRUE(minor.isLevelEnabled(LgTypes::Error));
    EXPECT_FALSE(minor.isLevelEnabled(LgTypes::Profiling));
}

TEST_F(LogGroups, DefaultThresholdIsForLaterGroups)
{
    open(nullptr);
    EXPECT_EQ(0xF0U, levelsOf("before"));
    LgMajorGroup::setDefaultThreshold(LgTypes::InternalError);
    EXPECT_EQ(LgTypes::FatalError, LgMajorGroup::getDefaultThreshold());
    EXPECT_EQ(0xC0U, levelsOf("after"));
    EXPECT_EQ(0xF0U, levelsOf("before"));
}

TEST_F(LogGroups, EnvironmentSetsTheDefaultFirst)
{
    const struct
    {
        const char* level;
        unsigned int ui, radiosity;
        std::string complaint;
    } cases[] = {{"Tracing", 0xFC, 0xFE, ""},
                 {"Internal Error", 0xC0, 0xC2, ""},
                 {"tracing", 0xF0, 0xF2, complaint("KR_LOG_DEFAULT_LEVEL", "tracing")},
                 {"", 0xF0, 0xF2, ""}};
    Kr::OsEnv::putVariable("KR_LOG_GROUPS=Radiosity=Profiling");
    for (const auto& c : cases)
    {
        Kr::OsEnv::putVariable(("KR_LOG_DEFAULT_LEVEL=" + std::string(c.level)).c_str());
        const std::string errors =
            outputOf(std::cerr, [] { LgMajorGroup::initializeFromEnvironment(); });
        EXPECT_EQ(errors, c.complaint);
        EXPECT_EQ(c.ui, levelsOf("UI")) << c.level;
        EXPECT_EQ(c.radiosity, levelsOf("Radiosity")) << c.level;
        LgMajorGroup::finalize();
        LgMajorGroup::setDefaultThreshold(LgTypes::Warning);
    }
    Kr::OsEnv::putVariable("KR_LOG_GROUPS=");
}

TEST_F(LogGroups, ListingIsInByteOrderOfTheNames)
{
    open("a group with a name of 27 ch=Error,UI=Warning,Base=Profiling");
    EXPECT_EQ("Major Groups:\n" + std::string(20, ' ') + "Base Tracing, Profiling\n" +
                  std::string(22, ' ') + "UI Tracing\na group with a name of 27 ch Tracing\n",
              listing());
}

TEST_F(LogGroups, MisuseFailsItsCheck)
{
    const char* const types = "src/base/lgTypes";
    expectAssertion("l < NUM_LEVELS", types, 42, [] { LgTypes::getLevelName(noLevel); });
    expectAssertion("s", types, 49, [] { LgTypes::getLevelFromString(nullptr); });

    expectAssertion("names", file, 129, [] { LgMajorGroup::getInstanceForName("UI"); });
    expectAssertion("names", file, 183, [] { LgMajorGroup::parse("UI=Error"); });
    expectAssertion("names", file, 216, [] { LgMajorGroup::finalize(); });
    expectAssertion("l < NUM_LEVELS", file, 239,
                    [] { LgMajorGroup::setDefaultThreshold(noLevel); });
    expectAssertion("l < NUM_LEVELS", file, 256,
                    [] { LgMajorGroup().setLogThreshold(noLevel, true); });
    expectAssertion("n", file, 314, [] { LgMinorGroup(LgMajorGroup(), nullptr); });

    open(nullptr);
    expectAssertion("!names", file, 166, [] { LgMajorGroup::initialize(nullptr); });
    for (const char* settings : {"UI=Error,Database", "UI=Error,Database=", "UI=Error,Database=,"})
        expectAssertion("s", types, 49, [&] { LgMajorGroup::parse(settings); });
    EXPECT_EQ(0xE0U, levelsOf("UI"));
}

/// A list that is searched from its beginning takes a minute for that.
TEST_F(LogGroups, ManyGroups)
{
    constexpr std::size_t count = 60000;
    open(nullptr);
    const auto start = std::chrono::steady_clock::now();
    std::vector<std::string> names;
    for (std::size_t i = 0; i < count; ++i)
        names.push_back("group" + std::to_string(i));
    std::vector<std::unique_ptr<Kr::LgGroup>> groups;
    for (const std::string& name : names)
        groups.push_back(std::make_unique<Kr::LgGroup>(name.c_str(), name.c_str()));
    groups.erase(groups.begin() + 1, groups.end()); // in the order of their making
    EXPECT_TRUE(groups.front()->isLevelEnabled(LgTypes::Warning));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

/// What statements look at is there for the life of the process.
TEST_F(LogGroups, MajorGroupsAreOffWhileTheRegistryIsClosed)
{
    open("UI=Tracing");
    const LgMinorGroup minor(LgMajorGroup::getInstanceForName("UI"), "minor");
    EXPECT_TRUE(minor.isLevelEnabled(LgTypes::Tracing));
    LgMajorGroup::finalize();
    EXPECT_FALSE(minor.isLevelEnabled(LgTypes::InternalError));
    LgMajorGroup::initialize(nullptr);
    EXPECT_EQ("Major Groups:\n", listing());
    EXPECT_EQ(0xF0U, levelsOf("UI"));
    EXPECT_TRUE(minor.isLevelEnabled(LgTypes::Warning));
}

} // namespace

#include "otherLibrary.h"
#include "raised.h"

#include <base/envVar.h>
#include <base/inOptionParser.h>
#include <base/inSingleton.imp>
#include <base/osEnv.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <iomanip>
#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <typeinfo>
#include <vector>

namespace
{

// --- options ---

/// An argument vector with the program's name in front.
class Arguments
{
public:
    explicit Arguments(std::vector<std::string> words)
        : _words(std::move(words))
    {
        _words.insert(_words.begin(), "program");
        for (std::string& word : _words)
            _pointers.push_back(word.data());
        _pointers.push_back(nullptr);
    }
    int count() const { return static_cast<int>(_words.size()); }
    char** vector() { return _pointers.data(); }

private:
    std::vector<std::string> _words;
    std::vector<char*> _pointers;
};

/// Every option with its value, then the index of the first argument that is none.
std::string parse(Arguments arguments, const char* options)
{
    Kr::InOptionParser parser(arguments.count(), arguments.vector(), options);
    std::string result;
    for (int option = parser.getOption(); option != -1; option = parser.getOption())
    {
        result += static_cast<char>(option);
        if (parser.getValue() != nullptr)
            result += std::string("=") + parser.getValue();
        result += ' ';
    }
    EXPECT_EQ(nullptr, parser.getValue());
    const int end = parser.getArgumentIndex();
    EXPECT_EQ(-1, parser.getOption());
    EXPECT_EQ(end, parser.getArgumentIndex());
    return result + std::to_string(end);
}

TEST(OptionParser, WalksTheCommandLine)
{
    const struct
    {
        std::vector<std::string> arguments;
        const char* expected;
    } cases[] = {
        {{}, "1"},
        {{"-a", "-bX", "rest"}, "a b=X 3"},
        {{"-b", "X"}, "b=X 3"},
        {{"-b"}, "b 2"},
        {{"-ab", "Y"}, "a b=Y 3"},
        {{"-ab", "-a", "-a"}, "a b=-a a 4"},
        {{"-b", "--", "-a"}, "b=-- a 4"},
        {{"-b", "", "-a"}, "b= a 4"},
        {{"-za", "-a"}, "? a a 3"},
        {{"--", "-a"}, "2"},
        {{"--all", "-a"}, "2"},
        {{"-a", "-", "x"}, "a 2"},
        {{"", "-a"}, "1"},
        {{"rest", "-a"}, "1"},
        {{"-a-", "-a"}, "a ? a 3"},
        {{"-\xff"}, "? 2"},
    };
    for (const auto& entry : cases)
        EXPECT_EQ(entry.expected, parse(Arguments(entry.arguments), "ab:"))
            << testing::PrintToString(entry.arguments);
    EXPECT_EQ("? 2", parse(Arguments({"-a"}), nullptr));
    EXPECT_EQ("1", parse(Arguments({}), "a"));
    EXPECT_EQ("\xff 2", parse(Arguments({"-\xff"}), "\xff")); // not taken for the end
    const std::string large(1 << 20, 'v');
    EXPECT_EQ("b=" + large + " 2", parse(Arguments({"-b" + large}), "ab:"));
    EXPECT_EQ(10000 * std::strlen("a ") + std::strlen("10001"),
              parse(Arguments(std::vector<std::string>(10000, "-a")), "a").size());
}

TEST(OptionParser, TakesFurtherValues)
{
    Arguments arguments({"-b", "first", "-a", "-a", "-bfirst", "second"});
    Kr::InOptionParser parser(arguments.count(), arguments.vector(), "ab:");
    EXPECT_EQ(nullptr, parser.gotoNextValue());
    EXPECT_EQ(0, parser.getArgumentIndex());
    EXPECT_EQ('b', parser.getOption());
    EXPECT_STREQ("first", parser.getValue());
    EXPECT_STREQ("-a", parser.gotoNextValue());
    EXPECT_EQ('a', parser.getOption());
    EXPECT_EQ(4, parser.getArgumentIndex());
    EXPECT_EQ('b', parser.getOption());
    EXPECT_STREQ("second", parser.gotoNextValue());
    EXPECT_EQ(nullptr, parser.gotoNextValue());
    EXPECT_EQ(nullptr, parser.getValue());
    EXPECT_EQ(6, parser.getArgumentIndex());
    EXPECT_EQ(-1, parser.getOption());
}

#ifdef NDEBUG
TEST(OptionParser, NoArgumentsAreNoOptions)
{
    Kr::InOptionParser parser(0, nullptr, "a");
    EXPECT_EQ(-1, parser.getOption());
    EXPECT_EQ(nullptr, parser.gotoNextValue());
    EXPECT_EQ(0, parser.getArgumentIndex());
}
#else
TEST(OptionParserDeathTest, NoArgumentsAreAnError)
{
    EXPECT_DEATH(Kr::InOptionParser(0, nullptr, "a"), "argc > 0");
}
#endif

TEST(OptionParser, SplitsSubOptions)
{
    char readOnly[] = "ro";
    char size[] = "size";
    char* const tokens[] = {readOnly, size, nullptr};
    const auto split = [&](std::string text, char* const* known)
    {
        std::string result;
        char* rest = text.data();
        char* value = nullptr;
        do
        {
            result += std::to_string(Kr::InOptionParser::getSubOption(&rest, known, &value));
            result += value != nullptr ? std::string("=") + value + ' ' : " ";
        } while (*rest != '\0');
        EXPECT_EQ(text.data() + text.size(), rest);
        return result;
    };
    EXPECT_EQ("0 1=10 -1=x ", split("ro,size=10,x", tokens));
    EXPECT_EQ("1= 1=a=b 0 ", split("size=,size=a=b,ro", tokens));
    EXPECT_EQ("-1=RO -1=x -1= -1= ", split("RO,x=1,,=2", tokens));
    EXPECT_EQ("-1= ", split("", tokens));
    EXPECT_EQ("-1=ro ", split("ro", nullptr));
    char* none = nullptr;
    EXPECT_THROW(Kr::InOptionParser::getSubOption(&none, tokens, &none), Kr::ExInternalError);
}

// --- singletons ---

struct Tracked
{
    explicit Tracked(int& alive)
        : count(alive)
    {
        ++count;
    }
    virtual ~Tracked() { --count; }
    int& count;
};

struct Never
{
    virtual ~Never() = default;
};

TEST(Singleton, LivesOnce)
{
    using One = Kr::InSingleton<Tracked>;
    using NotInitialized = Kr::InSingletonEx::ExNotInitialized;
    using Destroyed = Kr::InSingletonEx::ExAlreadyDestroyed;
    const char* const file = "src/base/inSingleton.imp";
    const std::string name = typeid(Tracked).name();
    const std::string notInitialized = name + " is not initialized.";
    const std::string alreadyDestroyed = name + " has already been destroyed.";
    int alive = 0;

    EXPECT_EQ(notInitialized, reasonOf<NotInitialized>([] { One::getInstance(); }, file));
    EXPECT_EQ(notInitialized, reasonOf<NotInitialized>([] { One::destroy(); }, file));
    Tracked* first = new Tracked(alive);
    One::initialize(first);
    Tracked second(alive);
    EXPECT_EQ(
        name + " has already been initialized.",
        reasonOf<Kr::InSingletonEx::ExAlreadyInitialized>([&] { One::initialize(&second); }, file));
    EXPECT_EQ(first, One::getInstance());
    One::destroy();
    EXPECT_EQ(1, alive); // the rejected one is still ours
    EXPECT_EQ(alreadyDestroyed, reasonOf<Destroyed>([] { One::destroy(); }, file));
    EXPECT_EQ(alreadyDestroyed, reasonOf<Destroyed>([&] { One::initialize(&second); }, file));
    EXPECT_EQ(notInitialized, reasonOf<NotInitialized>([] { One::getInstance(); }, file));

    Kr::InSingleton<Never>::initialize(nullptr);
    EXPECT_EQ(nullptr, Kr::InSingleton<Never>::getInstance());
    Kr::InSingleton<Never>::destroy();
}

TEST(Singleton, IsOneForAllLibraries)
{
    auto* service = new Other::Service;
    Kr::InSingleton<Other::Service>::initialize(service);
    EXPECT_EQ(service, &Other::Service::getInstance());
    EXPECT_EQ(service, Other::getServiceInLibrary());
    Kr::InSingleton<Other::Service>::destroy();
    EXPECT_THROW(Other::getServiceInLibrary(), Kr::InSingletonEx);
}

// --- environment variables ---

template <class Listed>
std::string listed(const Listed& object)
{
    std::ostringstream stream;
    stream << object;
    return stream.str();
}

TEST(EnvVar, HoldsWhatItReadUntilItIsRefreshed)
{
    Kr::EnvVar::putEnv("KR_TEST_TEXT=");
    Kr::EnvVar text("KR_TEST_TEXT", "x");
    Kr::EnvVar bare("KR_TEST_TEXT", nullptr);
    EXPECT_STREQ("x", text.getValue());
    EXPECT_EQ(nullptr, bare.getValue());
    EXPECT_EQ("name              KR_TEST_TEXT value \"NIL\" default \"x\"", listed(text));
    EXPECT_EQ("name              KR_TEST_TEXT value \"NIL\" default \"NIL\"", listed(bare));

    Kr::EnvVar::putEnv("KR_TEST_TEXT=a=b");
    EXPECT_STREQ("x", text.getValue());
    text.refresh();
    EXPECT_STREQ("a=b", text.getValue());
    Kr::EnvVar::putEnv("KR_TEST_TEXT=c");
    EXPECT_STREQ("a=b", text.getValue());
    EXPECT_EQ("name              KR_TEST_TEXT value \"a=b\" default \"x\"", listed(text));
    Kr::EnvVar::putEnv("KR_TEST_TEXT=");
    text.refresh();
    EXPECT_STREQ("x", text.getValue());
}

TEST(EnvVar, ConvertsNumbers)
{
    const struct
    {
        const char* assignment;
        std::int32_t integer;
        double number;
    } cases[] = {
        {"KR_TEST_NUMBER=", 5, 2.5},
        {"KR_TEST_NUMBER=12", 12, 12.},
        {"KR_TEST_NUMBER=abc", 0, 0.},
        {"KR_TEST_NUMBER= \t+7.25 m", 7, 7.25},
        {"KR_TEST_NUMBER=+-7", 0, 0.},
        {"KR_TEST_NUMBER=-1e3", -1, -1000.},
        {"KR_TEST_NUMBER=0x10", 0, 0.},
        {"KR_TEST_NUMBER=99999999999", 2147483647, 99999999999.},
        {"KR_TEST_NUMBER=-99999999999", -2147483647 - 1, -99999999999.},
        {"KR_TEST_NUMBER=1e400", 1, std::numeric_limits<double>::infinity()},
        {"KR_TEST_NUMBER=-0.001e999", 0, -std::numeric_limits<double>::infinity()},
        {"KR_TEST_NUMBER=1000e-999", 1000, 0.},
        {"KR_TEST_NUMBER=4.9e-324", 4, 4.9e-324},
    };
    Kr::EnvIntVar integer("KR_TEST_NUMBER", 5);
    Kr::EnvDoubleVar number("KR_TEST_NUMBER", 2.5);
    for (const auto& entry : cases)
    {
        Kr::EnvVar::putEnv(entry.assignment);
        integer.refresh();
        static_cast<Kr::EnvVar&>(number).refresh(); // virtual
        EXPECT_EQ(entry.integer, integer.getValue()) << entry.assignment;
        EXPECT_EQ(entry.number, number.getValue()) << entry.assignment;
    }
    Kr::EnvVar::putEnv("KR_TEST_NUMBER=12.5");
    EXPECT_EQ(12, Kr::EnvIntVar("KR_TEST_NUMBER", 5).getValue());
    number.refresh();
    std::ostringstream stream; // whose format settings play no part
    stream << std::left << std::scientific << std::setfill('*') << std::setw(99) << number;
    EXPECT_EQ("name            KR_TEST_NUMBER value 12.5 default 2.5", stream.str());
    Kr::EnvVar::putEnv("KR_TEST_NUMBER=");
}

TEST(EnvVar, IsListedWhileItLives)
{
    const std::string before = listed(Kr::EnvVar::getRegistry());
    {
        const Kr::EnvIntVar first("KR_TEST_FIRST", 1);
        const Kr::EnvVar second("KR_TEST_SECOND_WITH_A_VERY_LONG_NAME", "d");
        EXPECT_EQ(before +
                      "\nname             KR_TEST_FIRST value 1 default 1"
                      "\nname KR_TEST_SECOND_WITH_A_VERY_LONG_NAME value \"NIL\" default \"d\"",
                  listed(Kr::EnvVar::getRegistry()));
        EXPECT_THROW(Kr::EnvVar(nullptr, "x"), Kr::ExInternalError);
    }
    EXPECT_EQ(before, listed(Kr::EnvVar::getRegistry()));
}

/// Built with the program, before any variable, and filled late: destroyed after everything that
/// the program has built in between.
struct LateOwner
{
    ~LateOwner()
    {
        if (variable != nullptr &&
            Kr::EnvVar::getRegistry().getVariables().back() != variable.get())
            std::abort();
    }
    std::unique_ptr<Kr::EnvVar> variable;
} lateOwner;

TEST(EnvVar, MayBeTheLastToGo)
{
    lateOwner.variable = std::make_unique<Kr::EnvVar>("KR_TEST_LATE", nullptr);
}

TEST(OsEnv, SetsFindsAndRemoves)
{
    Kr::OsEnv::putVariable("KR_TEST_VARIABLE=value");
    EXPECT_STREQ("value", Kr::OsEnv::getVariable("KR_TEST_VARIABLE"));
    int found = 0;
    for (char** entry = Kr::OsEnv::getBlock(); *entry != nullptr; ++entry)
        found += std::string(*entry) == "KR_TEST_VARIABLE=value" ? 1 : 0;
    EXPECT_EQ(1, found);
    Kr::OsEnv::putVariable("KR_TEST_VARIABLE=");
    EXPECT_EQ(nullptr, Kr::OsEnv::getVariable("KR_TEST_VARIABLE"));
    EXPECT_EQ(nullptr, Kr::OsEnv::getVariable(""));
    EXPECT_EQ(nullptr, Kr::OsEnv::getVariable(nullptr));
    for (const char* wrong : {"KR_TEST_VARIABLE", "=value", "", "="})
        EXPECT_THROW(Kr::OsEnv::putVariable(wrong), Kr::ExInternalError) << wrong;
    EXPECT_THROW(Kr::OsEnv::putVariable(nullptr), Kr::ExInternalError);
}

} // namespace

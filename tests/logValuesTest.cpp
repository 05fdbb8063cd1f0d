#include <base/dtTime.h>
#include <base/inEx.h>
#include <base/log.h>
#include <base/profConsolidator.h>
#include <base/rational.h>

#include <gtest/gtest.h>

#include <atomic>
#include <clocale>
#include <cstdio>
#include <iomanip>
#include <locale>
#include <sstream>
#include <stdexcept>
#include <string>

namespace Scene
{

struct Node
{
    const char* name;
};

struct Light : Node
{
};

Kr::LgStream& operator<<(Kr::LgStream& stream, const Node& node)
{
    return stream << "node " << node.name;
}

struct Untaught
{
};

enum class Kind
{
    One
};

enum Plain
{
    seven = 7
};

} // namespace Scene

namespace
{

using namespace std::chrono_literals;
using Kr::LgTaken::IsTaken;

// What means nothing in a message does not compile.
static_assert(!IsTaken<Scene::Untaught>() && !IsTaken<Scene::Kind>() && !IsTaken<void (*)()>());
static_assert(!IsTaken<std::ios_base&(std::ios_base&)>() && !IsTaken<decltype(std::setw(1))>());
static_assert(!IsTaken<const wchar_t*>() && !IsTaken<wchar_t[3]>() &&
              !IsTaken<const char * Scene::Node::*>());
static_assert(!IsTaken<volatile int*>() && IsTaken<int*>() && IsTaken<char[3]>());

template <class Value>
std::string textOf(const Value& value)
{
    Kr::LgStream stream;
    stream << value << Kr::ends;
    std::string text(stream.getNextSize() + 1, '\0');
    stream >> text.data();
    text.pop_back();
    return text;
}

template <class Value>
std::string inserted(const Value& value)
{
    std::ostringstream os;
    os << value;
    return os.str();
}

TEST(LogValues, ReadAsTheirTypeSays)
{
    EXPECT_EQ(textOf(Scene::Node{"a"}), "node a");
    EXPECT_EQ(textOf(Scene::Light{{"b"}}), "node b");
    EXPECT_EQ(textOf(Scene::seven), "7");
    EXPECT_EQ(textOf(std::atomic<int>(5)), "5");
    EXPECT_EQ(textOf(std::atomic<bool>(true)), "true");
    EXPECT_EQ(textOf(std::string("text")), "text");
    EXPECT_EQ(textOf(nullptr), textOf(static_cast<const void*>(nullptr)));

    EXPECT_EQ(textOf(250ms), "250ms");
    EXPECT_EQ(textOf(-3us), "-3us");
    EXPECT_EQ(textOf(7h), "7h");
    EXPECT_EQ(textOf(std::chrono::duration<float>(0.5f)), "0.500000s");
    EXPECT_EQ(textOf(std::chrono::duration<int, std::ratio<1001, 24000>>(2)), "2[1001/24000]s");
    EXPECT_EQ(textOf(std::chrono::duration<int, std::ratio<7>>(2)), "2[7]s");

    EXPECT_EQ(textOf(std::runtime_error("why")), "why");
    const Kr::InEx::ExInvalidObject both(KR_HERE, "handle");
    EXPECT_EQ(textOf(both), both.getReason());
    EXPECT_EQ(textOf(static_cast<const Kr::ExBase&>(both)), both.getReason());
    EXPECT_EQ(textOf(static_cast<const std::exception&>(both)), both.getReason());

    EXPECT_EQ(textOf(Kr::Rational(30000, 1001)), "(30000/1001=29.97)");
    const Kr::DtTime time(48, Kr::Rational(30000, 1001));
    EXPECT_EQ(textOf(time), inserted(time));
    EXPECT_EQ(textOf(Kr::DtTimeIndex(-5)), "-5");
    EXPECT_EQ(textOf(std::this_thread::get_id()), inserted(std::this_thread::get_id()));
    EXPECT_EQ(textOf(Kr::ProfConsolidator()).find("Profiler Consolidator:\n"), 0U);
}

/// Decimal commas and grouping, by the C library's and by the global locale.
TEST(LogValues, DoNotFollowTheLocale)
{
    struct Grouping : std::numpunct<char>
    {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    const std::locale before = std::locale::global(std::locale(std::locale(), new Grouping));
    for (const char* name : {"de_DE.UTF-8", "German"})
        std::setlocale(LC_ALL, name);
    EXPECT_EQ(textOf(1234567.5), "1234567.500000");
    EXPECT_EQ(textOf(-1.5L), "-1.500000");
    EXPECT_EQ(textOf(0x1p80L), "1208925819614629174706176.000000");
    EXPECT_EQ(textOf(Kr::Rational(30000, 1001)), "(30000/1001=29.97)");
    std::setlocale(LC_ALL, "C");
    std::locale::global(before);
}

TEST(LogValues, PointersReadAsTheRuntimeWritesThem)
{
    const auto* pointer = reinterpret_cast<const void*>(0xabcdef);
    EXPECT_EQ(textOf(pointer), sizeof pointer == 4 ? "00ABCDEF" : "0xabcdef");
}

} // namespace

#include <base/internal/errors/calendar.h>
#include <base/internal/errors/demangle.h>
#include <base/internal/errors/invariant.h>
#include <base/internal/errors/processIdentity.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <typeinfo>
#include <vector>

namespace
{

TEST(Calendar, KnowsTheDaysBeforeAndAfter1970)
{
    const struct
    {
        std::int64_t second;
        Kr::CalendarTime time;
    } rows[] = {
        {0, {1970, 1, 1, 0, 0, 0}},
        {-1, {1969, 12, 31, 23, 59, 59}},
        {-86400, {1969, 12, 31, 0, 0, 0}},
        {951782400, {2000, 2, 29, 0, 0, 0}},
        {4107542399, {2100, 2, 28, 23, 59, 59}},
        {4107542400, {2100, 3, 1, 0, 0, 0}},
        {-11644473600, {1601, 1, 1, 0, 0, 0}},
        {-62135596801, {0, 12, 31, 23, 59, 59}},
    };
    for (const auto& [second, expected] : rows)
    {
        const Kr::CalendarTime time = Kr::getCalendarTime(second);
        EXPECT_EQ((std::vector<std::int64_t>{expected.year, expected.month, expected.day,
                                             expected.hour, expected.minute, expected.second}),
                  (std::vector<std::int64_t>{time.year, time.month, time.day, time.hour,
                                             time.minute, time.second}))
            << second;
        EXPECT_EQ(Kr::divideDown(second, 86400),
                  Kr::getCalendarDays({time.year, time.month, time.day}));
    }
}

struct Unnamed
{
    template <class T>
    struct Of
    {
    };
};

TEST(Demangle, NamesTypesForPeople)
{
    const auto plain = [](const char* name, std::size_t size)
    {
        char text[64];
        return std::string(Kr::demanglePlain(name, text, size));
    };
    const char* unnamed = typeid(Unnamed).name();
    const char* ofInt = typeid(Unnamed::Of<int>).name();
    EXPECT_EQ("(anonymous namespace)::Unnamed", Kr::demangle(unnamed));
    EXPECT_EQ("(anonymous namespace)::Unnamed", plain(unnamed, 64));
    EXPECT_EQ("(anonymous na", plain(unnamed, 14));
    EXPECT_EQ("(anonymous namespace)::Unnamed::Of<int>", Kr::demangle(ofInt));
    EXPECT_EQ(ofInt, plain(ofInt, 64));
    EXPECT_EQ("Kr::InEx::ExDouble", plain("N2Kr4InEx8ExDoubleE", 64));
    for (const char* none :
         {"", "N", "no type", "9short", "N2KrE5", "N2Kr", "99999999999999999999a"})
    {
        EXPECT_EQ(none, Kr::demangle(none));
        EXPECT_EQ(none, plain(none, 64));
    }
    EXPECT_EQ("", Kr::demangle(nullptr) + plain(nullptr, 1));
}

TEST(InvariantDeathTest, ReportsTheStatedTextAndLine)
{
    using testing::HasSubstr;
    EXPECT_DEATH(Kr::failInvariant("src/base/a", 87, "size > 0"),
                 testing::AllOf(HasSubstr("src/base/a"), HasSubstr("87"), HasSubstr("size > 0")));
    EXPECT_DEBUG_DEATH(KR_INVARIANT_TEXT(1 > 2, "size > 0", 87), "size > 0");
}

std::atomic<int> ends{0};

TEST(ProcessIdentity, TellsOfTheEndOfAThreadOnce)
{
    const auto countEnd = +[]() noexcept { ++ends; };
    for (int threads = 1; threads <= 3; ++threads)
    {
        std::thread(
            [&]
            {
                EXPECT_TRUE(Kr::ProcessIdentity::atThreadEnd(countEnd));
                EXPECT_TRUE(Kr::ProcessIdentity::atThreadEnd(countEnd));
                EXPECT_EQ(threads - 1, ends);
            })
            .join();
        EXPECT_EQ(threads, ends);
    }
}

} // namespace

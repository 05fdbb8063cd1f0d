#include "raised.h"

#include <base/internal/errors/nearestNames.h>
#include <base/lgValues.h>
#include <base/prCatalog.h>
#include <base/prEx.h>
#include <base/prQuery.h>

#include <gmock/gmock.h>

#include <sstream>

namespace
{

using Kr::PrCatalog;
using Kr::PrCounter;
using Kr::PrEx;
using Kr::PrPath;
using Kr::PrQuery;
using testing::HasSubstr;

TEST(Counters, PathsAreTakenApartAndPutTogether)
{
    const struct
    {
        const char* text;
        const char* object;
        const char* instance;
        const char* counter;
    } cases[] = {
        {R"(\Memory\Available Bytes)", "Memory", "", "Available Bytes"},
        {R"(\Processor(_Total)\% Processor Time)", "Processor", "_Total", "% Processor Time"},
        {R"(\Thread(viewer/3#12)\ID Thread)", "Thread", "viewer/3#12", "ID Thread"},
        {R"(\Paging File(\??\C:\pagefile.sys)\% Usage)", "Paging File", R"(\??\C:\pagefile.sys)",
         "% Usage"},
        {R"(\A(b(c)\d)\e)", "A", R"(b(c)\d)", "e"},
        {R"(\Memory\Average Lifetime (s))", "Memory", "", "Average Lifetime (s)"},
        {R"(\Disk(a)\Rate (s))", "Disk", "a", "Rate (s)"},
    };
    for (const auto& each : cases)
    {
        const PrPath path(each.text);
        EXPECT_EQ(path.getObject(), each.object);
        EXPECT_EQ(path.getInstance(), each.instance);
        EXPECT_EQ(path.getCounter(), each.counter);
        EXPECT_EQ(path.toString(), each.text);
        EXPECT_EQ(PrPath(each.object, each.instance, each.counter), path);
    }
}

TEST(Counters, WhatIsNoPathSaysWhy)
{
    const struct
    {
        std::string text;
        const char* fault;
    } cases[] = {
        {"", "it does not begin with a backslash"},
        {R"(Memory\Available Bytes)", "it does not begin with a backslash"},
        {R"(\\server\Memory\Available Bytes)", "it names a machine"},
        {R"(\)", "it names no object"},
        {R"(\(a)\b)", "it names no object"},
        {R"(\Memory)", "it names no counter"},
        {R"(\Memory\)", "it names no counter"},
        {R"(\Processor(0))", "it names no counter"},
        {R"(\Processor(0)\)", "it names no counter"},
        {R"(\Processor()\% User Time)", "its instance is empty"},
        {R"(\Processor(0\% User Time)", "its instance is not closed by a parenthesis"},
        {R"(\Memory\Available\Bytes)", "its counter holds a backslash"},
        {"\\Memory\\Available\nBytes", "it holds a control character"},
        {R"(\Memory\)" + std::string(3000, 'x'), "it is longer than 2047 characters"},
    };
    for (const auto& each : cases)
        EXPECT_THAT(reasonOf<PrEx::ExInvalidPath>([&] { PrPath{each.text}; }),
                    HasSubstr(each.fault));
    EXPECT_THAT(reasonOf<PrEx::ExInvalidPath>([] { PrPath("A(b", "", "c"); }),
                HasSubstr("not closed"));
    EXPECT_THAT(reasonOf<PrEx::ExInvalidPath>([] { PrPath("A", "", "b\\c"); }),
                HasSubstr("holds a backslash"));
    EXPECT_THAT(reasonOf<PrEx::ExInvalidPath>([] { PrPath("A(b)", "", "c"); }),
                HasSubstr("divide"));
}

TEST(Counters, NearestNames)
{
    const Kr::Vector<std::string> names = {"Memory", "PhysicalDisk", "Process", "Processor"};
    EXPECT_EQ(Kr::quoteNearest("memry", names), "'Memory', 'Process', 'Processor'");
    EXPECT_EQ(Kr::quoteNearest("DISK", {"Memory", "PhysicalDisk"}), "'PhysicalDisk', 'Memory'");
    EXPECT_EQ(Kr::quoteNearest("x", {}), "");
    EXPECT_EQ(Kr::getEditDistance("porcessors", "processor"), 2U);
}

TEST(Counters, WhatThereIsNotNamesTheNearest)
{
    PrQuery query;
    const auto reason = [&query](auto exception, const char* path)
    { return reasonOf<std::remove_pointer_t<decltype(exception)>>([&] { query.add(path); }); };
    PrEx::ExUnknownObject* const object = nullptr;
    PrEx::ExUnknownCounter* const counter = nullptr;
    PrEx::ExUnknownInstance* const instance = nullptr;
    EXPECT_THAT(reason(object, R"(\Procesor(_Total)\% Processor Time)"),
                HasSubstr("no counter object 'Procesor'; nearest: 'Processor'"));
    EXPECT_THAT(reason(counter, R"(\Processor(_Total)\% Procesor Time)"),
                HasSubstr("'Processor' has no counter '% Procesor Time'; nearest: '% Processor "));
    EXPECT_THAT(reason(instance, R"(\Processor(_Totl)\% Processor Time)"),
                HasSubstr("'Processor' has no instance '_Totl'; nearest: '_Total'"));
    EXPECT_THAT(reason(instance, R"(\Processor\% Processor Time)"),
                HasSubstr("'Processor' needs an instance; nearest: "));
    EXPECT_EQ(reason(instance, R"(\System(x)\System Up Time)"),
              "The object 'System' has no instances, not 'x' either.");
    EXPECT_THAT(reasonOf<PrEx::ExInvalidPath>([&] { query.add(R"(\Processor(*)\% User Time)"); }),
                HasSubstr("pattern"));
    EXPECT_TRUE(query.getCounters().empty());
}

/// All that the system lists can be asked for; collected twice, it has a value or says why not.
TEST(Counters, WhatIsListedIsThere)
{
    PrQuery query;
    for (const std::string& object : PrCatalog::getObjects())
    {
        EXPECT_FALSE(PrCatalog::getCounters(object).empty()) << object;
        const bool isPlain = PrCatalog::getInstances(object).empty();
        const Kr::Vector<PrPath> paths = PrCatalog::expand({object, isPlain ? "" : "_T*", "*"});
        EXPECT_EQ(paths.size(), PrCatalog::getCounters(object).size());
        for (const PrPath& path : paths)
            query.add(path);
    }
    ASSERT_GE(query.getCounters().size(), 2U);
    EXPECT_EQ(query.getCounters().front()->getStatus(), PrCounter::NotCollected);
    query.collect();
    for (const PrCounter* const counter : query.getCounters())
        EXPECT_TRUE(counter->isRate() || counter->isAvailable()) << counter->getPath();
    query.collect();
    for (const PrCounter* const counter : query.getCounters())
    {
        if (counter->getStatus() == PrCounter::FirstOfTwo) // no tick has passed
            continue;
        EXPECT_GE(counter->getValue(), 0.) << counter->getPath();
    }
}

TEST(Counters, UpTimeInAnyCaseOfTheLetters)
{
    PrQuery query;
    const PrCounter& upTime = query.add(R"(\SYSTEM\system up time)");
    EXPECT_EQ(reasonOf<PrEx::ExNoValue>([&] { upTime.getValue(); }),
              R"(The counter '\SYSTEM\system up time' has no value: )"
              "nothing has been collected yet.");
    EXPECT_EQ(upTime.getValue(-1.), -1.);
    const double before = PrQuery::read(R"(\System\System Up Time)");
    query.collect();
    const double between = upTime.getValue();
    const double after = PrQuery::read(R"(\System\System Up Time)");
    EXPECT_GT(before, 0.);
    EXPECT_LE(before, between);
    EXPECT_LE(between, after);
    EXPECT_LT(after - before, 60.); // in seconds
    std::ostringstream text;
    text << query;
    EXPECT_EQ(text.str().rfind(R"(\SYSTEM\system up time: )", 0), 0U);
    Kr::LgStream message;
    message << query << Kr::ends;
    std::string written(message.getNextSize() + 1, '\0');
    message >> written.data();
    EXPECT_EQ(written.c_str(), text.str());
    query.remove(upTime);
    query.collect();
    EXPECT_TRUE(query.getCounters().empty());
}

} // namespace

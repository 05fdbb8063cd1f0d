// The program whose tests the tests of the harness run: what goes wrong in it goes wrong on
// purpose.

#include "testingLibrary.h"

#include <base/hmCheckedNew.h>
#include <base/log.h>
#include <base/osFileWriter.h>
#include <base/testCheck.h>
#include <base/testMgr.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <map>
#include <thread>

static const Kr::TestGroup good("good");
static const Kr::TestGroup values("values");
static const Kr::TestGroup ends("ends");
static const Kr::TestGroup processes("processes");
static const Kr::TestGroup resources("resources");

enum class Shade
{
    Dark = 7
};

struct Opaque
{
    bool operator==(const Opaque&) const { return false; }
};

KR_TEST(good, conditions)
{
    const unsigned large = 4000000000U;
    KR_CHECK(-1 < large);
    KR_CHECK(large > -1);
    KR_CHECK(static_cast<long long>(large) == large);
    KR_CHECK(std::string("a") + "b" == "ab");
    KR_CHECK((large == 0 || large > 1));
    KR_CHECK(!std::map<int, int>{{1, 2}}.empty());
    KR_CHECK_NEAR(1., 1.25, 0.25);
    KR_CHECK_RAISES(throw std::out_of_range(""), std::logic_error);
}

KR_TEST(good, threads)
{
    std::thread other([] { KR_CHECK(1 + 1 == 2); });
    other.join();
}

KR_TEST(values, shown)
{
    const char text[] = "tab\t";
    const char* none = nullptr;
    KR_CHECK(1 == 2U);
    KR_CHECK('a' == '\n');
    KR_CHECK(0.1F == 0.1);
    KR_CHECK(text == std::string_view("tab"));
    KR_CHECK(none == "text");
    KR_CHECK(std::vector<std::string>{"a"} != std::vector<std::string>{"a"});
    KR_CHECK(Shade::Dark > Shade::Dark);
    KR_CHECK(Opaque() == Opaque());
    KR_CHECK_NEAR(1., std::nan(""), 1e9);
    KR_CHECK_RAISES(std::stoi("x"), std::out_of_range);
    KR_CHECK_RAISES(1 + 1, int);
}

KR_TEST(ends, required)
{
    KR_CHECK(true);
    KR_REQUIRE(2 > 3);
    KR_TEST_FAIL("behind the end");
}

KR_TEST(ends, skipped)
{
    KR_TEST_SKIP("no device");
}

KR_TEST(ends, library)
{
    const Kr::TestNote outer("outer");
    try
    {
        const Kr::TestNote gone("gone");
        throw 1;
    }
    catch (int)
    {
    }
    KR_CHECK(true);
    const Kr::TestNote inner("inner ", 3);
    Kr::raise<Kr::ExInternalError>(KR_HERE, "first\nsecond");
}

KR_TEST(ends, standard)
{
    std::vector<int>().at(3);
}

KR_TEST(ends, number)
{
    throw 42;
}

KR_TEST(processes, before)
{
}

KR_TEST(processes, crashes)
{
    std::puts("last words <&> \x01\xff");
    std::fflush(stdout);
    __builtin_trap();
}

KR_TEST(processes, leaves)
{
    std::_Exit(0);
}

KR_TEST(processes, hangs)
{
    std::this_thread::sleep_for(std::chrono::minutes(5));
}

KR_TEST(processes, behind)
{
    std::atexit([] { std::_Exit(3); });
}

KR_TEST(resources, handle)
{
    static const Kr::OsFileWriter* const forgotten =
        new Kr::OsFileWriter(Kr::TestMgr::getFile("forgotten"), {3, 3, 0}, false);
    KR_CHECK(forgotten != nullptr);
}

KR_TEST(resources, message)
{
    const Kr::LgMinorGroup group(Kr::LgMajorGroup::getInstanceForName("Scene"), "Scene");
    KR_LOG(group, Warning) << "no light";
    KR_TEST_FAIL("to show it");
}

int main(int argc, char** argv)
{
    TestingLibrary::load();
    return Kr::TestMgr::main(argc, argv);
}

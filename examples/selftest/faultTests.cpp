// What the harness makes of tests that go wrong. They are skipped unless SELFTEST_FAULTS is set.

#include "colour.h"

#include <base/log.h>
#include <base/osEnv.h>
#include <base/testCheck.h>

#include <vector>

static const Kr::TestGroup faults("faults");

namespace
{

void skipUnlessAskedFor()
{
    if (Kr::OsEnv::getVariable("SELFTEST_FAULTS") == nullptr)
        KR_TEST_SKIP("SELFTEST_FAULTS is not set");
}

/// Where the optimiser cannot see what becomes of it.
void* volatile kept = nullptr;

} // namespace

KR_TEST(faults, fails)
{
    skipUnlessAskedFor();
    const Kr::LgMinorGroup group(Kr::LgMajorGroup::getInstanceForName("Colours"), "Colours");
    KR_LOG(group, Warning) << "about to look at grey";
    const Colour grey = Colour::parse("#808080");
    KR_CHECK(grey == Colour::parse("#7f7f7f"));
    KR_CHECK(std::vector<int>({grey.red, grey.green}) == std::vector<int>({128, 127}));
    KR_REQUIRE(grey.toText() == "#7f7f7f");
    KR_TEST_FAIL("The test has ended before.");
}

KR_TEST(faults, raises)
{
    skipUnlessAskedFor();
    const Kr::TestNote note("looking at a colour by name");
    Colour::parse("orange");
}

KR_TEST(faults, leaks)
{
    skipUnlessAskedFor();
    kept = new char[100];
    KR_CHECK(kept != nullptr);
}

KR_TEST(faults, crashes)
{
    skipUnlessAskedFor();
    __builtin_trap();
}

KR_TEST(faults, comesBehind)
{
    KR_CHECK(Colour::parse("#010203").blue == 3);
}

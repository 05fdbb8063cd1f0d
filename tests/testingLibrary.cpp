#include "testingLibrary.h"

#include <base/testCheck.h>

static const Kr::TestGroup library("library");

KR_TEST(library, ends)
{
    KR_REQUIRE(false); // an exception that the other library catches
}

void TestingLibrary::load()
{
}

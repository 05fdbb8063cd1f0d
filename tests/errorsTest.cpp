#include <base/assert.h>
#include <base/exSysError.h>
#include <base/inEx.h>
#include <base/objPtr.h>
#include <base/trace.h>

#include <gtest/gtest.h>

#include <string>

namespace
{

TEST(Errors, CaughtByTheirTypeAndByTheirStandardBase)
{
    EXPECT_THROW(Kr::raise(Kr::InEx::ExDependencyCycle(KR_HERE)), std::logic_error);
    EXPECT_THROW(Kr::raise(Kr::InEx::ExDependencyCycle(KR_HERE)), Kr::InEx);
    EXPECT_THROW(Kr::raise(Kr::ExBadException(KR_HERE)), std::bad_exception);
    EXPECT_THROW(Kr::raise(Kr::ExSysErrorANSI(KR_HERE)), Kr::ExBase);
    EXPECT_THROW(Kr::Assertions::throwProgramAborted("file", 3), Kr::ExInternalError);
}

TEST(Errors, PositionIsTheNameInTheTree)
{
    try
    {
        KR_ASSERT_AT(1 > 2, 314);
        FAIL();
    }
    catch (const Kr::ExInternalError& error)
    {
        EXPECT_STREQ("tests/errorsTest", error.getFileName());
        EXPECT_EQ(314, error.getLineNo());
        EXPECT_STREQ("Assertion '1 > 2' failed.", error.what());
    }
    EXPECT_STREQ("src/base/pow2.inline",
                 Kr::SourceName("/usr/include/libKRbase/base/pow2.inline").getChars());
    EXPECT_STREQ("src/base/inInitMgr", Kr::SourceName("D:\\src\\base\\inInitMgr.cpp").getChars());
}

} // namespace

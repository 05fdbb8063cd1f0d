// A program that knows only the installed package.

#include <base/assert.h>
#include <base/exBase.h>
#include <base/inInitGuard.h>

#include <cstring>

int main(int argc, const char* const* argv)
{
    Kr::InInitGuard guard(argc, argv);
    try
    {
        KR_ASSERT(argc != 0);
    }
    catch (const std::runtime_error& error)
    {
        return std::strcmp(error.what(), "Assertion 'argc != 0' failed.") == 0 ? 0 : 1;
    }
    return 2;
}

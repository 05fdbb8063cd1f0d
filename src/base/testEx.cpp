#include <base/testEx.h>

#include <cstdio>
#include <string>
#include <string_view>

namespace Kr
{

namespace
{

constexpr int shownLength = 256;

} // namespace

TestEx::TestEx(const char* file, int line) noexcept
    : ExBase(file, line)
{
}

void TestEx::formatReason(const char* format, const char* first, const char* second) noexcept
{
    char reason[reasonSize];
    std::snprintf(reason, sizeof reason, format, shownLength, first, shownLength, second);
    setReason(reason);
}

TestEx::ExNoSuchTest::ExNoSuchTest(const char* file, int line, const char* pattern,
                                   const char* nearest)
    : ExConcrete(file, line)
{
    if (*nearest == '\0')
        formatReason("There are no tests to run%.*s%.*s.", "", "");
    else
        formatReason("No test is called '%.*s'; the nearest are %.*s.", pattern, nearest);
}

TestEx::ExTwoTests::ExTwoTests(const char* file, int line, const char* name)
    : ExConcrete(file, line)
{
    formatReason("Two tests are called '%.*s'%.*s.", name, "");
}

TestEx::ExUnknownOption::ExUnknownOption(const char* file, int line, const char* option,
                                         const char* nearest)
    : ExConcrete(file, line)
{
    formatReason("There is no option '%.*s'; the nearest are %.*s.", option, nearest);
}

TestEx::ExBadValue::ExBadValue(const char* file, int line, const char* option, const char* needed)
    : ExConcrete(file, line)
{
    formatReason("The option %.*s needs %.*s.", option, needed);
}

TestEx::ExBadFile::ExBadFile(const char* file, int line, const char* name, const char* why)
    : ExConcrete(file, line)
{
    std::string_view reason = why; // those of the system may end a line
    while (!reason.empty() && reason.back() < ' ')
        reason.remove_suffix(1);
    formatReason("The file '%.*s' cannot be used: %.*s", name, std::string(reason).c_str());
}

} // namespace Kr

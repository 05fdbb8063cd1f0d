#pragma once

/// @file
/// What keeps `TestMgr` from running the tests that it is asked for.
/// @code{.cpp}
/// #include <base/testMgr.h>
///
/// int runQuickTests()
/// {
///     try
///     {
///         return Kr::TestMgr::run({"vectors.*"});
///     }
///     catch (const Kr::TestEx& error)
///     {
///         std::cerr << error.getReason() << '\n'; // No test is called 'vectors.*'; ...
///         return 2;
///     }
/// }
/// @endcode

#include <base/exBase.h>

namespace Kr
{

class KR_BASE_API TestEx : public ExBase
{
public:
    class ExNoSuchTest;
    class ExTwoTests;
    class ExUnknownOption;
    class ExBadValue;
    class ExBadFile;

protected:
    TestEx(const char* file, int line) noexcept;

    /// Sets the reason from a format with a "%.*s" for each of the texts, with a precision of 256.
    void formatReason(const char* format, const char* first, const char* second) noexcept;
};

/// "No test is called '%.*s'; the nearest are %.*s.", or that there are no tests at all.
class KR_BASE_API TestEx::ExNoSuchTest
    : public ExConcrete<TestEx::ExNoSuchTest, std::invalid_argument, TestEx>
{
public:
    /// @param nearest the nearest names, quoted; empty if there are no tests
    ExNoSuchTest(const char* file, int line, const char* pattern, const char* nearest);
};

/// "Two tests are called '%.*s'."
class KR_BASE_API TestEx::ExTwoTests
    : public ExConcrete<TestEx::ExTwoTests, std::logic_error, TestEx>
{
public:
    ExTwoTests(const char* file, int line, const char* name);
};

/// "There is no option '%.*s'; the nearest are %.*s."
class KR_BASE_API TestEx::ExUnknownOption
    : public ExConcrete<TestEx::ExUnknownOption, std::invalid_argument, TestEx>
{
public:
    ExUnknownOption(const char* file, int line, const char* option, const char* nearest);
};

/// "The option %.*s needs %.*s."
class KR_BASE_API TestEx::ExBadValue
    : public ExConcrete<TestEx::ExBadValue, std::invalid_argument, TestEx>
{
public:
    ExBadValue(const char* file, int line, const char* option, const char* needed);
};

/// "The file '%.*s' cannot be used: %.*s": the second is why.
class KR_BASE_API TestEx::ExBadFile
    : public ExConcrete<TestEx::ExBadFile, std::runtime_error, TestEx>
{
public:
    ExBadFile(const char* file, int line, const char* name, const char* why);
};

} // namespace Kr

#pragma once

/// @file
/// What ends a test from within: thrown by `KR_REQUIRE` and `KR_TEST_SKIP`, caught by the harness.
/// @code
/// try
/// {
///     std::stoi("4");
/// }
/// catch (const Kr::TestEnd&) // for who catches everything else
/// {
///     throw;
/// }
/// catch (...)
/// {
/// }
/// @endcode
/// It is no `std::exception` on purpose: a test that handles those ends nevertheless.

#include <base/krBaseApi.h>

namespace Kr
{

class KR_BASE_API TestEnd
{
public:
    TestEnd() noexcept;
    TestEnd(const TestEnd& other) noexcept;
    TestEnd& operator=(const TestEnd& other) noexcept;
    ~TestEnd(); // NOLINT(performance-trivially-destructible): one type for all libraries
};

} // namespace Kr

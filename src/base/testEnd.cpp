#include <base/testEnd.h>

namespace Kr
{

// Here, so that all libraries of a program throw and catch one type.
TestEnd::TestEnd() noexcept = default;
TestEnd::TestEnd(const TestEnd& other) noexcept = default;
TestEnd& TestEnd::operator=(const TestEnd& other) noexcept = default;
TestEnd::~TestEnd() = default; // NOLINT(performance-trivially-destructible)

} // namespace Kr

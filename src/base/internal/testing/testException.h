#pragma once

/// @file
/// The exception that is being handled, whatever its type.

#include <base/testResult.h>

#include <string>

namespace Kr
{

class TestException
{
public:
    /// Type and reason, as far as they are known; empty if there is no exception.
    static std::string describe();

    /// Puts down where the exception says that it was raised; false if it does not say.
    static bool findPosition(TestFailure& failure);
};

} // namespace Kr

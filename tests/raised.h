#pragma once

/// @file
/// What an action that must raise has raised.

#include <base/exBase.h>

#include <gtest/gtest.h>

#include <string>

/// The reason of the `Exception` that `action` raises. `file` and `line`, where given, are the
/// position that it must name.
template <class Exception, class Action>
std::string reasonOf(Action action, const char* file = nullptr, int line = 0)
{
    try
    {
        action();
    }
    catch (const Exception& error)
    {
        EXPECT_STREQ(file != nullptr ? file : error.getFileName(), error.getFileName());
        EXPECT_EQ(line != 0 ? line : error.getLineNo(), error.getLineNo());
        return error.getReason();
    }
    return "nothing raised";
}

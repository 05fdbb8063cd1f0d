#pragma once

/// @file
/// What a failed check of misuse must say.

#include <base/exBase.h>

#include <gtest/gtest.h>

/// For checks whose line is not part of the interface.
inline constexpr int anyLine = -1;

/// Expects that `action` fails the check of that text, at that place in the tree.
template <class Action>
void expectAssertion(const char* expression, const char* file, int line, Action action)
{
    try
    {
        action();
        ADD_FAILURE() << "passed: " << expression;
    }
    catch (const Kr::ExInternalError& error)
    {
        EXPECT_EQ("Assertion '" + std::string(expression) + "' failed.", error.what());
        EXPECT_STREQ(file, error.getFileName());
        EXPECT_TRUE(line == anyLine || line == error.getLineNo()) << error.getLineNo();
    }
}

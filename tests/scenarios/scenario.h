#pragma once

/// @file
/// What the scenario programs share: named cases, each run in a process of its own.

#include <cstdio>
#include <cstring>
#include <exception>

namespace Scenario
{

struct Case
{
    const char* name;
    void (*run)();
};

inline int& failures()
{
    static int count = 0;
    return count;
}

inline void check(bool holds, const char* expression, int line)
{
    if (holds)
        return;
    ++failures();
    std::fprintf(stderr, "line %d: does not hold: %s\n", line, expression);
}

/// Runs the case that the first argument names. The status is 0 when everything that it checked
/// held, 1 when not, 2 when there is no such case.
template <std::size_t Count>
int run(const Case (&cases)[Count], int argc, char** argv)
{
    for (const Case& entry : cases)
    {
        if (argc < 2 || std::strcmp(entry.name, argv[1]) != 0)
            continue;
        try
        {
            entry.run();
        }
        catch (const std::exception& error)
        {
            std::fprintf(stderr, "unexpected exception: %s\n", error.what());
            return 1;
        }
        return failures() == 0 ? 0 : 1;
    }
    std::fprintf(stderr, "no such case: %s\n", argc < 2 ? "(none given)" : argv[1]);
    return 2;
}

} // namespace Scenario

#define SCENARIO_CHECK(expression) ::Scenario::check((expression), #expression, __LINE__)

/// Checks that the statement throws `type`; `reason` is its expected `what()`.
#define SCENARIO_CHECK_THROWS(statement, type, reason)                                             \
    do                                                                                             \
    {                                                                                              \
        try                                                                                        \
        {                                                                                          \
            statement;                                                                             \
            ::Scenario::check(false, #statement " throws " #type, __LINE__);                       \
        }                                                                                          \
        catch (const type& error)                                                                  \
        {                                                                                          \
            ::Scenario::check(std::strcmp(error.what(), reason) == 0, error.what(), __LINE__);     \
        }                                                                                          \
    } while (false)

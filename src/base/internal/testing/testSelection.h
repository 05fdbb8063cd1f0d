#pragma once

/// @file
/// Which of the tests are asked for, and in what order.

#include <base/testGroup.h>

#include <cstdint>
#include <string>
#include <vector>

namespace Kr
{

class TestSelection
{
public:
    using Tests = std::vector<const TestCase*>;

    /// Those of the tests that a pattern names, all if there are no patterns, less those that an
    /// exclusion names. Each names tests, or groups as a whole. Raises `TestEx::ExNoSuchTest` for
    /// one that names none, and if nothing is left; `TestEx::ExTwoTests` for equal names.
    static Tests select(const Tests& all, const std::vector<std::string>& patterns,
                        const std::vector<std::string>& exclusions);

    /// The test of that name. Raises `TestEx::ExNoSuchTest`.
    static const TestCase& find(const Tests& all, const std::string& fullName);

    /// The tests of each group together.
    static std::vector<Tests> toGroups(const Tests& tests);

    /// Changes the order of groups, and of the tests in each; to the same by the same seed,
    /// everywhere.
    static void shuffle(std::vector<Tests>& groups, std::uint32_t seed);
};

} // namespace Kr

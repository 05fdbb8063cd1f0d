#include <base/internal/testing/testSelection.h>

#include <base/internal/errors/nearestNames.h>
#include <base/internal/errors/wildcards.h>
#include <base/raise.h>
#include <base/testEx.h>

#include <algorithm>
#include <random>
#include <set>
#include <utility>

namespace Kr
{

namespace
{

using Tests = TestSelection::Tests;

bool names(const std::string& pattern, const TestCase& test)
{
    return fitsWildcards(pattern, test.getFullName()) ||
           fitsWildcards(pattern, test.getGroupName());
}

bool isNamed(const std::vector<std::string>& patterns, const TestCase& test)
{
    return std::any_of(patterns.begin(), patterns.end(),
                       [&](const std::string& pattern) { return names(pattern, test); });
}

[[noreturn]] void raiseNoSuchTest(const Tests& all, const std::string& pattern)
{
    const bool isGroup = pattern.find('.') == std::string::npos;
    std::set<std::string> known;
    for (const TestCase* test : all)
        known.insert(isGroup ? test->getGroupName() : test->getFullName());
    const std::string nearest = quoteNearest(pattern, {known.begin(), known.end()});
    raise<TestEx::ExNoSuchTest>(KR_HERE, pattern.c_str(), nearest.c_str());
}

void checkEachNamesSome(const Tests& all, const std::vector<std::string>& patterns)
{
    for (const std::string& pattern : patterns)
        if (std::none_of(all.begin(), all.end(),
                         [&](const TestCase* test) { return names(pattern, *test); }))
            raiseNoSuchTest(all, pattern);
}

void checkNames(const Tests& all)
{
    std::set<std::string> known;
    for (const TestCase* test : all)
        if (!known.insert(test->getFullName()).second)
            raise<TestEx::ExTwoTests>(KR_HERE, test->getFullName().c_str());
}

/// By Fisher and Yates (1938). The remainder favours the first places by less than one in a
/// million, and is the same with every standard library.
template <class Things>
void shuffleThings(Things& things, std::mt19937& generator)
{
    for (std::size_t left = things.size(); left > 1; --left)
        std::swap(things[left - 1], things[generator() % left]);
}

} // namespace

Tests TestSelection::select(const Tests& all, const std::vector<std::string>& patterns,
                            const std::vector<std::string>& exclusions)
{
    checkNames(all);
    checkEachNamesSome(all, patterns);
    checkEachNamesSome(all, exclusions);
    Tests selected;
    for (const TestCase* test : all)
        if ((patterns.empty() || isNamed(patterns, *test)) && !isNamed(exclusions, *test))
            selected.push_back(test);
    if (selected.empty())
        raiseNoSuchTest({}, "");
    return selected;
}

const TestCase& TestSelection::find(const Tests& all, const std::string& fullName)
{
    for (const TestCase* test : all)
        if (test->getFullName() == fullName)
            return *test;
    raiseNoSuchTest(all, fullName);
}

std::vector<Tests> TestSelection::toGroups(const Tests& tests)
{
    std::vector<Tests> groups;
    for (const TestCase* test : tests)
    {
        if (groups.empty() ||
            std::string_view(groups.back().front()->getGroupName()) != test->getGroupName())
            groups.emplace_back();
        groups.back().push_back(test);
    }
    return groups;
}

void TestSelection::shuffle(std::vector<Tests>& groups, std::uint32_t seed)
{
    std::mt19937 generator(seed);
    shuffleThings(groups, generator);
    for (Tests& tests : groups)
        shuffleThings(tests, generator);
}

} // namespace Kr

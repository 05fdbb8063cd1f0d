#pragma once

/// @file
/// Tests and the groups that they belong to, as the library or program that holds them declares
/// them; `TestMgr` runs them. testCheck.h has what a test is written with.
/// @code{.cpp}
/// #include <base/testCheck.h>
///
/// static const Kr::TestGroup vectors("vectors");
///
/// KR_TEST(vectors, grow)
/// {
///     std::vector<int> numbers{1, 2};
///     numbers.push_back(3);
///     KR_REQUIRE(numbers.size() == 3);
///     KR_CHECK(numbers.back() == 3);
/// }
/// @endcode
/// A test is known by the names of its group and its own, "vectors.grow". Tests may stand in the
/// program and in any library of it: they are static objects that enter themselves, and leave when
/// their library is unloaded. A group may be spread over several sources: each has an object of the
/// same name.
///
/// What several tests need is an object that each of them builds; its destructor runs however the
/// test ends.
///
/// Pitfalls: a test stands below the object of its group in the same source. Blanks, "*" and line
/// breaks have no place in names.

#include <base/krBaseApi.h>
#include <base/raise.h>

#include <string>
#include <vector>

namespace Kr
{

class KR_BASE_API TestGroup
{
public:
    /// @param name not copied. Raises `ExInternalError` if it is null, empty, or holds what has no
    ///     place in a name.
    explicit TestGroup(const char* name);

    const char* getName() const noexcept { return _name; }

private:
    const char* const _name;
};

/// A test as `KR_TEST` declares it.
class KR_BASE_API TestCase
{
public:
    using Function = void (*)();

    /// Enters the test. The texts and the group are not copied.
    TestCase(const TestGroup& group, const char* name, Function function, const char* file,
             int line);
    TestCase(const TestCase&) = delete;
    TestCase& operator=(const TestCase&) = delete;
    ~TestCase();

    const char* getGroupName() const noexcept { return _group.getName(); }
    const char* getName() const noexcept { return _name; }
    std::string getFullName() const;
    const char* getFile() const noexcept { return _file; }
    int getLine() const noexcept { return _line; }

    void run() const { _function(); }

    /// All tests of the process, by the names of their groups; those of a group in the order of
    /// their sources.
    static std::vector<const TestCase*> getAll();

private:
    const TestGroup& _group;
    const char* const _name;
    const Function _function;
    const char* const _file;
    const int _line;
    TestCase* _next = nullptr; ///< entered after this one
};

} // namespace Kr

/// Declares a test, whose body follows.
/// @param group the identifier of the group's object
/// @param name an identifier
#define KR_TEST(group, name)                                                                       \
    static void krTest_##group##_##name();                                                         \
    static const ::Kr::TestCase krTestCase_##group##_##name(group, #name,                          \
                                                            &krTest_##group##_##name, KR_HERE);    \
    static void krTest_##group##_##name()

#pragma once

/// @file
/// The checks of tests, and what else a test is written with.
/// @code{.cpp}
/// static const Kr::TestGroup text("text");
///
/// KR_TEST(text, numbers)
/// {
///     for (const char* const digits : {"0", "17", "-4"})
///     {
///         const Kr::TestNote note("digits ", digits); // stands beside what fails below
///         KR_CHECK(std::to_string(std::stoi(digits)) == digits);
///     }
///     KR_CHECK_NEAR(std::stod("0.5"), 0.5, 1e-12);
///     KR_CHECK_RAISES(std::stoi("four"), std::invalid_argument);
/// }
/// @endcode
/// `KR_CHECK` takes any condition. If it is a comparison and does not hold, both values are shown:
///
///     src/text.cpp:9: KR_CHECK(std::to_string(std::stoi(digits)) == digits)
///         left:  "-4"
///         right: "- 4"
///         note: digits - 4
///
/// The test goes on behind a check that fails, and ends behind a `KR_REQUIRE` that does. The values
/// of a condition are computed once. Integers of different types compare as the numbers that they
/// are, and C strings as texts.
///
/// Pitfalls:
/// - `&&` and `||` do not compile in a condition: make two checks, or put it into parentheses,
///   which shows no values.
/// - Checks may be made by several threads; but `KR_REQUIRE` and `KR_TEST_SKIP` end a test by an
///   exception, so they belong to the test's own thread, outside of destructors. It is no
///   `std::exception`; who catches everything must throw it on.

#include <base/krBaseApi.h>
#include <base/raise.h>
#include <base/testEnd.h>
#include <base/testGroup.h>
#include <base/testNote.h>
#include <base/testPerformer.h>
#include <base/testValue.h>

#include <string>
#include <type_traits>

namespace Kr
{

/// What came of a condition: whether it holds, and if not, the values of a comparison.
struct TestOutcome
{
    bool holds;
    std::string values;
};

/// Comparisons that are not the compiler's business. For `TestCompare`.
class KR_BASE_API TestComparison
{
public:
    enum Relation
    {
        Equal,
        Different,
        Less,
        LessOrEqual,
        Greater,
        GreaterOrEqual
    };

    /// Of the values as they are in memory, whatever registers the caller computes with.
    static bool holds(Relation relation, double left, double right) noexcept;
    static bool holds(Relation relation, const char* left, const char* right) noexcept;
};

/// What each comparison means. For `TestLeft`.
struct TestCompare
{
    using Relation = TestComparison::Relation;

    template <Relation relation, class L, class R>
    static TestOutcome compare(const L& left, const R& right)
    {
        if (isTrue<relation>(left, right))
            return {true, {}};
        return {false,
                TestText::describeBoth(TestValue::describe(left), TestValue::describe(right))};
    }

private:
    template <class T>
    static constexpr bool isReal = std::is_same_v<T, float> || std::is_same_v<T, double>;

    template <class L, class R>
    static constexpr bool areReal = (isReal<L> && std::is_arithmetic_v<R>) ||
                                    (std::is_arithmetic_v<L> && isReal<R>);

    template <class T>
    static constexpr bool isCString =
        std::is_same_v<std::decay_t<T>, char*> || std::is_same_v<std::decay_t<T>, const char*>;

    template <Relation relation, class L, class R>
    static bool isTrue(const L& left, const R& right)
    {
        if constexpr (areReal<L, R>)
            return TestComparison::holds(relation, static_cast<double>(left),
                                         static_cast<double>(right));
        else if constexpr (isCString<L> && isCString<R>)
            return TestComparison::holds(relation, static_cast<const char*>(left),
                                         static_cast<const char*>(right));
        else if constexpr (TestValueKinds::isInteger<L> && TestValueKinds::isInteger<R>)
            return isTrueOfIntegers<relation>(left, right);
        else
            return apply<relation>(left, right);
    }

    /// A negative number is less than any without a sign.
    template <Relation relation, class L, class R>
    static bool isTrueOfIntegers(L left, R right)
    {
        using Common = std::common_type_t<L, R>;
        if constexpr (std::is_signed_v<L> && std::is_unsigned_v<R>)
        {
            if (left < 0)
                return apply<relation>(-1, 0);
        }
        else if constexpr (std::is_unsigned_v<L> && std::is_signed_v<R>)
        {
            if (right < 0)
                return apply<relation>(0, -1);
        }
        return apply<relation>(static_cast<Common>(left), static_cast<Common>(right));
    }

    template <Relation relation, class L, class R>
    static bool apply(const L& left, const R& right)
    {
        if constexpr (relation == Relation::Equal)
            return static_cast<bool>(left == right);
        else if constexpr (relation == Relation::Different)
            return static_cast<bool>(left != right);
        else if constexpr (relation == Relation::Less)
            return static_cast<bool>(left < right);
        else if constexpr (relation == Relation::LessOrEqual)
            return static_cast<bool>(left <= right);
        else if constexpr (relation == Relation::Greater)
            return static_cast<bool>(left > right);
        else
            return static_cast<bool>(left >= right);
    }
};

/// The left side of a condition.
template <class L>
class TestLeft
{
public:
    explicit TestLeft(const L& value)
        : _value(value)
    {
    }

    template <class R>
    TestOutcome operator==(const R& right) const
    {
        return TestCompare::compare<TestComparison::Equal>(_value, right);
    }
    template <class R>
    TestOutcome operator!=(const R& right) const
    {
        return TestCompare::compare<TestComparison::Different>(_value, right);
    }
    template <class R>
    TestOutcome operator<(const R& right) const
    {
        return TestCompare::compare<TestComparison::Less>(_value, right);
    }
    template <class R>
    TestOutcome operator<=(const R& right) const
    {
        return TestCompare::compare<TestComparison::LessOrEqual>(_value, right);
    }
    template <class R>
    TestOutcome operator>(const R& right) const
    {
        return TestCompare::compare<TestComparison::Greater>(_value, right);
    }
    template <class R>
    TestOutcome operator>=(const R& right) const
    {
        return TestCompare::compare<TestComparison::GreaterOrEqual>(_value, right);
    }

    // A condition that is no comparison

    operator TestOutcome() const // NOLINT(google-explicit-constructor): it is the outcome
    {
        return {static_cast<bool>(_value), {}};
    }

    template <class R>
    TestOutcome operator&&(const R&) const = delete; ///< make two checks
    template <class R>
    TestOutcome operator||(const R&) const = delete; ///< put it into parentheses

private:
    const L& _value;
};

/// Takes the left side off a condition, which `<<` binds closer than a comparison does.
struct TestSplit
{
    template <class L>
    TestLeft<L> operator<<(const L& left) const
    {
        return TestLeft<L>(left);
    }
};

template <class R>
TestOutcome operator&&(const TestOutcome&, const R&) = delete; ///< make two checks
template <class R>
TestOutcome operator||(const TestOutcome&, const R&) = delete; ///< put it into parentheses

/// What `KR_CHECK_RAISES` calls: whether the function throws an `Exception`.
template <class Exception, class Function>
TestOutcome getRaiseOutcome(const Function& function)
{
    try
    {
        function();
    }
    catch (const TestEnd&)
    {
        throw;
    }
    catch (const Exception&)
    {
        return {true, {}};
    }
    catch (...)
    {
        return {false, "instead: " + TestPerformer::describeException()};
    }
    return {false, "nothing was raised"};
}

} // namespace Kr

#if defined(__clang__) // which takes the split for a mistake, unlike other compilers
#define KR_TEST_SPLIT(...)                                                                         \
    _Pragma("clang diagnostic push") _Pragma(                                                      \
        "clang diagnostic ignored \"-Woverloaded-shift-op-parentheses\"")::Kr::TestSplit()         \
        << __VA_ARGS__ _Pragma("clang diagnostic pop")
#else
#define KR_TEST_SPLIT(...) ::Kr::TestSplit() << __VA_ARGS__
#endif

#define KR_TEST_REPORT(mode, outcome, text)                                                        \
    [&](const ::Kr::TestOutcome& krOutcome)                                                        \
    {                                                                                              \
        return ::Kr::TestPerformer::check(::Kr::TestPerformer::mode, krOutcome.holds, text,        \
                                          krOutcome.values, KR_HERE);                              \
    }(outcome)

/// Checks a condition, as an expression that is whether it holds; the test goes on.
#define KR_CHECK(...) KR_TEST_REPORT(GoOn, KR_TEST_SPLIT(__VA_ARGS__), "KR_CHECK(" #__VA_ARGS__ ")")

/// The same, and a condition that does not hold ends the test.
#define KR_REQUIRE(...)                                                                            \
    KR_TEST_REPORT(EndTest, KR_TEST_SPLIT(__VA_ARGS__), "KR_REQUIRE(" #__VA_ARGS__ ")")

/// Checks that two numbers differ by `tolerance` at most; nothing is near to a NaN.
#define KR_CHECK_NEAR(left, right, tolerance)                                                      \
    ::Kr::TestPerformer::checkNear(::Kr::TestPerformer::GoOn, left, right, tolerance,              \
                                   "KR_CHECK_NEAR(" #left ", " #right ", " #tolerance ")",         \
                                   KR_HERE)
#define KR_REQUIRE_NEAR(left, right, tolerance)                                                    \
    ::Kr::TestPerformer::checkNear(::Kr::TestPerformer::EndTest, left, right, tolerance,           \
                                   "KR_REQUIRE_NEAR(" #left ", " #right ", " #tolerance ")",       \
                                   KR_HERE)

/// Checks that an expression throws an exception of the type, or of one derived from it.
#define KR_CHECK_RAISES(expression, type)                                                          \
    KR_TEST_REPORT(GoOn, ::Kr::getRaiseOutcome<type>([&] { static_cast<void>(expression); }),      \
                   "KR_CHECK_RAISES(" #expression ", " #type ")")
#define KR_REQUIRE_RAISES(expression, type)                                                        \
    KR_TEST_REPORT(EndTest, ::Kr::getRaiseOutcome<type>([&] { static_cast<void>(expression); }),   \
                   "KR_REQUIRE_RAISES(" #expression ", " #type ")")

/// A failure with a text; the test goes on.
#define KR_TEST_FAIL(text)                                                                         \
    static_cast<void>(                                                                             \
        ::Kr::TestPerformer::check(::Kr::TestPerformer::GoOn, false, text, {}, KR_HERE))

/// Ends the test, which counts as skipped unless something has failed already.
#define KR_TEST_SKIP(reason) ::Kr::TestPerformer::skip(reason)

#include <base/testCheck.h>

#include <cstring>

namespace Kr
{

namespace
{

template <class Value>
bool isTrue(TestComparison::Relation relation, Value left, Value right)
{
    switch (relation)
    {
    case TestComparison::Equal:
        return left == right;
    case TestComparison::Different:
        return left != right;
    case TestComparison::Less:
        return left < right;
    case TestComparison::LessOrEqual:
        return left <= right;
    case TestComparison::Greater:
        return left > right;
    case TestComparison::GreaterOrEqual:
        return left >= right;
    }
    return false;
}

} // namespace

bool TestComparison::holds(Relation relation, double left, double right) noexcept
{
    return isTrue(relation, left, right);
}

/// A null pointer is less than any text.
bool TestComparison::holds(Relation relation, const char* left, const char* right) noexcept
{
    if (left == nullptr || right == nullptr)
        return isTrue(relation, left != nullptr, right != nullptr);
    return isTrue(relation, std::strcmp(left, right), 0);
}

} // namespace Kr

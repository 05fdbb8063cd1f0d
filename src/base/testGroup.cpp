#include <base/testGroup.h>

#include <base/assert.h>

#include <algorithm>
#include <cstring>
#include <mutex>

namespace Kr
{

namespace
{

// Constant-initialised, since static objects of any library enter themselves; no test case outlives
// the library that holds it.
std::mutex mutex;
TestCase* first = nullptr;

bool isGoodName(const char* name)
{
    return name != nullptr && *name != '\0' && std::strpbrk(name, " \t\r\n*") == nullptr;
}

} // namespace

TestGroup::TestGroup(const char* name)
    : _name(name)
{
    KR_ASSERT(isGoodName(name));
}

TestCase::TestCase(const TestGroup& group, const char* name, Function function, const char* file,
                   int line)
    : _group(group)
    , _name(name)
    , _function(function)
    , _file(file)
    , _line(line)
{
    KR_ASSERT(isGoodName(name));
    const std::lock_guard<std::mutex> lock(mutex);
    TestCase** end = &first;
    while (*end != nullptr)
        end = &(*end)->_next;
    *end = this;
}

TestCase::~TestCase()
{
    const std::lock_guard<std::mutex> lock(mutex);
    TestCase** place = &first;
    while (*place != this)
        place = &(*place)->_next;
    *place = _next;
}

std::string TestCase::getFullName() const
{
    return std::string(getGroupName()) + '.' + _name;
}

std::vector<const TestCase*> TestCase::getAll()
{
    std::vector<const TestCase*> all;
    const std::lock_guard<std::mutex> lock(mutex);
    for (const TestCase* each = first; each != nullptr; each = each->_next)
        all.push_back(each);
    std::stable_sort(all.begin(), all.end(),
                     [](const TestCase* a, const TestCase* b)
                     { return std::strcmp(a->getGroupName(), b->getGroupName()) < 0; });
    return all;
}

} // namespace Kr

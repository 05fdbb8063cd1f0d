#include <base/osDirFilter.h>

#include <base/assert.h>
#include <base/osDirEntry.h>

#include <utility>

namespace Kr
{

namespace
{

char fold(char c, OsDirFilter::CaseMode mode)
{
    return mode == OsDirFilter::IgnoreCase && c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

} // namespace

OsDirFilter::OsDirFilter() = default;

OsDirFilter::OsDirFilter(Condition condition)
    : _condition(std::make_shared<const Condition>(std::move(condition)))
{
}

OsDirFilter OsDirFilter::name(const char* pattern, CaseMode mode)
{
    KR_ASSERT(pattern != nullptr);
    return OsDirFilter([text = std::string(pattern), mode](const OsDirEntry& entry)
                       { return matches(entry.getName(), text.c_str(), mode); });
}

OsDirFilter OsDirFilter::type(OsFileTypes::ElementType type)
{
    return OsDirFilter([type](const OsDirEntry& entry) { return entry.getType() == type; });
}

OsDirFilter OsDirFilter::depth(unsigned deepest)
{
    return OsDirFilter([deepest](const OsDirEntry& entry) { return entry.getDepth() <= deepest; });
}

OsDirFilter OsDirFilter::where(Condition condition)
{
    KR_ASSERT(condition != nullptr);
    return OsDirFilter(std::move(condition));
}

OsDirFilter OsDirFilter::operator&&(const OsDirFilter& other) const
{
    return OsDirFilter([left = *this, right = other](const OsDirEntry& entry)
                       { return left.accepts(entry) && right.accepts(entry); });
}

OsDirFilter OsDirFilter::operator||(const OsDirFilter& other) const
{
    return OsDirFilter([left = *this, right = other](const OsDirEntry& entry)
                       { return left.accepts(entry) || right.accepts(entry); });
}

OsDirFilter OsDirFilter::operator!() const
{
    return OsDirFilter([inner = *this](const OsDirEntry& entry) { return !inner.accepts(entry); });
}

bool OsDirFilter::accepts(const OsDirEntry& entry) const
{
    return _condition == nullptr || (*_condition)(entry);
}

/// Goes back to the last star only: what an earlier one took never has to be taken back. So the
/// time is at most that of the product of the lengths.
bool OsDirFilter::matches(const char* name, const char* pattern, CaseMode mode)
{
    const char* star = nullptr;
    const char* starName = nullptr;
    while (*name != '\0')
    {
        if (*pattern == '*')
        {
            star = pattern++;
            starName = name;
        }
        else if (*pattern != '\0' && (*pattern == '?' || fold(*pattern, mode) == fold(*name, mode)))
        {
            ++pattern;
            ++name;
        }
        else if (star != nullptr)
        {
            pattern = star + 1;
            name = ++starName;
        }
        else
            return false;
    }
    while (*pattern == '*')
        ++pattern;
    return *pattern == '\0';
}

} // namespace Kr

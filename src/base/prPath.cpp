#include <base/prPath.h>

#include <base/internal/errors/fixedText.h>
#include <base/prEx.h>
#include <base/raise.h>

#include <algorithm>
#include <ostream>
#include <string_view>

namespace Kr
{

namespace
{

constexpr std::size_t longest = 2047; // what the system takes

struct Parts
{
    std::string_view object;
    std::string_view instance;
    std::string_view counter;
};

bool isControl(char c)
{
    return static_cast<unsigned char>(c) < ' ';
}

/// Takes the path apart; returns what is wrong with it, or null.
const char* split(std::string_view text, Parts& parts)
{
    if (text.empty() || text.front() != '\\')
        return "it does not begin with a backslash";
    if (text.size() > longest)
        return "it is longer than 2047 characters";
    if (std::any_of(text.begin(), text.end(), isControl))
        return "it holds a control character";
    if (text.substr(0, 2) == "\\\\")
        return "it names a machine, and only this one's counters are read";
    text.remove_prefix(1);
    const std::size_t objectEnd = text.find_first_of("(\\");
    parts.object = text.substr(0, objectEnd);
    if (parts.object.empty())
        return "it names no object";
    if (objectEnd == text.npos)
        return "it names no counter";
    std::size_t separator = objectEnd;
    if (text[objectEnd] == '(')
    {
        // An instance may hold backslashes and parentheses: it ends at the last that close it.
        const std::size_t close = text.rfind(")\\");
        if (close == text.npos || close < objectEnd)
            return text.back() == ')' ? "it names no counter"
                                      : "its instance is not closed by a parenthesis";
        parts.instance = text.substr(objectEnd + 1, close - objectEnd - 1);
        if (parts.instance.empty())
            return "its instance is empty";
        separator = close + 1;
    }
    parts.counter = text.substr(separator + 1);
    if (parts.counter.empty())
        return "it names no counter";
    return parts.counter.find('\\') != text.npos ? "its counter holds a backslash" : nullptr;
}

std::string join(const std::string& object, const std::string& instance, const std::string& counter)
{
    std::string text = "\\" + object;
    if (!instance.empty())
        text.append("(").append(instance).append(")");
    return text.append("\\").append(counter);
}

} // namespace

PrPath::PrPath(const char* text)
    : PrPath(std::string(orEmpty(text)))
{
}

PrPath::PrPath(const std::string& text)
{
    Parts parts;
    if (const char* const fault = split(text, parts))
        raise<PrEx::ExInvalidPath>(KR_HERE, text.c_str(), fault);
    _object = parts.object;
    _instance = parts.instance;
    _counter = parts.counter;
}

PrPath::PrPath(const std::string& object, const std::string& instance, const std::string& counter)
    : PrPath(join(object, instance, counter))
{
    if (_object != object || _instance != instance || _counter != counter)
        raise<PrEx::ExInvalidPath>(KR_HERE, toString().c_str(),
                                   "its parts hold characters that divide a path");
}

PrPath::PrPath(const PrPath& other) = default;
PrPath& PrPath::operator=(const PrPath& other) = default;
PrPath::~PrPath() = default;

bool PrPath::isPattern() const noexcept
{
    return _instance.find('*') != _instance.npos || _counter.find('*') != _counter.npos;
}

std::string PrPath::toString() const
{
    return join(_object, _instance, _counter);
}

bool PrPath::operator==(const PrPath& other) const noexcept
{
    return _object == other._object && _instance == other._instance && _counter == other._counter;
}

std::ostream& operator<<(std::ostream& os, const PrPath& path)
{
    return os << path.toString();
}

} // namespace Kr

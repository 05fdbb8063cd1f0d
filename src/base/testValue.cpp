#include <base/testValue.h>

#include <base/internal/errors/demangle.h>

#include <charconv>
#include <cstdint>
#include <cstdio>

namespace Kr
{

namespace
{

/// As in a source text, so that nothing in it is invisible.
std::string quote(std::string_view text, char mark)
{
    std::string quoted(1, mark);
    for (const char c : text)
    {
        constexpr std::string_view special = "\n\t\r\\";
        const std::size_t place = special.find(c);
        char code[8];
        std::snprintf(code, sizeof code, "\\x%02x", static_cast<unsigned char>(c));
        if (place != std::string_view::npos)
            quoted.append({'\\', "ntr\\"[place]});
        else if (c == mark)
            quoted.append({'\\', c});
        else if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f)
            quoted += code;
        else
            quoted += c;
    }
    return quoted + mark;
}

/// The shortest text that is this number and no other.
template <class Number>
std::string toShortest(Number value)
{
    char text[64];
    return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

} // namespace

std::string TestText::describeType(const std::type_info& type)
{
    return '(' + demangle(type.name()) + ')';
}

std::string TestText::describeBoth(const std::string& left, const std::string& right)
{
    return "left:  " + left + "\nright: " + right;
}

std::string TestText::describeCharacter(char value)
{
    return quote({&value, 1}, '\'');
}

std::string TestText::describeSigned(long long value)
{
    return std::to_string(value);
}

std::string TestText::describeUnsigned(unsigned long long value)
{
    return std::to_string(value);
}

std::string TestText::describeFloat(float value)
{
    return toShortest(value);
}

std::string TestText::describeDouble(double value)
{
    return toShortest(value);
}

std::string TestText::describeText(const char* text)
{
    return text == nullptr ? "null" : quote(text, '"');
}

std::string TestText::describeText(std::string_view text)
{
    return quote(text, '"');
}

std::string TestText::describeAddress(const volatile void* address)
{
    if (address == nullptr)
        return "null";
    char text[32];
    std::snprintf(text, sizeof text, "0x%llx",
                  static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(address)));
    return text;
}

} // namespace Kr

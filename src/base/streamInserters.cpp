#include <base/streamInserters.h>

#include <charconv>
#include <limits>
#include <ostream>

namespace Kr
{

namespace
{

template <class Integer>
std::ostream& insert(std::ostream& stream, Integer value)
{
    char text[std::numeric_limits<Integer>::digits10 + 3]; // all digits, a sign, the terminator
    *std::to_chars(text, text + sizeof(text) - 1, value).ptr = '\0';
    return stream << text;
}

} // namespace

std::ostream& insertDecimal(std::ostream& stream, long long value)
{
    return insert(stream, value);
}

std::ostream& insertDecimal(std::ostream& stream, unsigned long long value)
{
    return insert(stream, value);
}

} // namespace Kr

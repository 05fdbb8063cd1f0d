#include "colour.h"

#include <base/raise.h>

#include <charconv>
#include <cmath>
#include <cstdio>
#include <ostream>

namespace
{

int parseChannel(std::string_view digits)
{
    int value = 0;
    const std::from_chars_result read =
        std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    if (read.ec != std::errc() || read.ptr != digits.data() + digits.size() || value < 0)
        Kr::raise<Kr::ExInternalError>(KR_HERE, "A colour has six hexadecimal digits.");
    return value;
}

int mixChannel(int from, int to, double place)
{
    return static_cast<int>(std::lround(from + (to - from) * place));
}

} // namespace

Colour Colour::parse(std::string_view text)
{
    if (text.size() != 7 || text[0] != '#')
        Kr::raise<Kr::ExInternalError>(KR_HERE, "A colour is written as #rrggbb.");
    return {parseChannel(text.substr(1, 2)), parseChannel(text.substr(3, 2)),
            parseChannel(text.substr(5, 2))};
}

std::string Colour::toText() const
{
    char text[32];
    std::snprintf(text, sizeof text, "#%02x%02x%02x", static_cast<unsigned>(red),
                  static_cast<unsigned>(green), static_cast<unsigned>(blue));
    return text;
}

Colour Colour::mix(const Colour& from, const Colour& to, double place)
{
    return {mixChannel(from.red, to.red, place), mixChannel(from.green, to.green, place),
            mixChannel(from.blue, to.blue, place)};
}

double Colour::getLuma() const
{
    return (0.2126 * red + 0.7152 * green + 0.0722 * blue) / 255.;
}

bool operator==(const Colour& a, const Colour& b)
{
    return a.red == b.red && a.green == b.green && a.blue == b.blue;
}

std::ostream& operator<<(std::ostream& os, const Colour& colour)
{
    return os << colour.toText();
}

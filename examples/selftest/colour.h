#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

/// A colour of 8 bits a channel.
struct Colour
{
    int red = 0;
    int green = 0;
    int blue = 0;

    /// From "#ff8000". Raises `Kr::ExInternalError` for any other text.
    static Colour parse(std::string_view text);

    std::string toText() const;

    /// The colour at this place between two others, from 0 to 1.
    static Colour mix(const Colour& from, const Colour& to, double place);

    /// How bright it looks, from 0 to 1 (ITU-R BT.709).
    double getLuma() const;
};

bool operator==(const Colour& a, const Colour& b);
std::ostream& operator<<(std::ostream& os, const Colour& colour);

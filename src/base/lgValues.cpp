#include <base/lgValues.h>

#include <base/internal/log/lgInserted.h>

namespace Kr
{

LgStream& insertUnit(LgStream& stream, long long numerator, long long denominator)
{
    constexpr struct
    {
        long long numerator;
        long long denominator;
        const char* name;
    } units[] = {{1, 1000000000, "ns"}, {1, 1000000, "us"}, {1, 1000, "ms"}, {1, 1, "s"},
                 {60, 1, "min"},        {3600, 1, "h"},     {86400, 1, "d"}};
    for (const auto& unit : units)
        if (unit.numerator == numerator && unit.denominator == denominator)
            return stream << unit.name;
    stream << '[' << numerator;
    if (denominator != 1)
        stream << '/' << denominator;
    return stream << "]s";
}

LgStream& operator<<(LgStream& stream, const std::thread::id& thread)
{
    return insertAsInOstream(stream, thread);
}

} // namespace Kr

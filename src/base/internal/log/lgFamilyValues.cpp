#include <base/lgValues.h>

#include <base/dtRefTime.h>
#include <base/dtTime.h>
#include <base/dtTimeMark.h>
#include <base/internal/log/lgInserted.h>
#include <base/prQuery.h>
#include <base/profConsolidator.h>
#include <base/profHistogram.h>
#include <base/rational.h>

namespace Kr
{

namespace
{

constexpr int profilingDigits = 9; // what profilers show of their seconds in a message

} // namespace

LgStream& operator<<(LgStream& stream, const DtRefTime& time)
{
    return insertAsInOstream(stream, time);
}

LgStream& operator<<(LgStream& stream, const DtTime& time)
{
    return insertAsInOstream(stream, time);
}

LgStream& operator<<(LgStream& stream, const DtTimeMark& mark)
{
    return insertAsInOstream(stream, mark);
}

LgStream& operator<<(LgStream& stream, const PrCounter& counter)
{
    return insertAsInOstream(stream, counter);
}

LgStream& operator<<(LgStream& stream, const PrQuery& query)
{
    return insertAsInOstream(stream, query);
}

LgStream& operator<<(LgStream& stream, const ProfConsolidator& consolidator)
{
    return insertAsInOstream(stream, consolidator, profilingDigits);
}

LgStream& operator<<(LgStream& stream, const ProfHistogram& histogram)
{
    return insertAsInOstream(stream, histogram, profilingDigits);
}

LgStream& operator<<(LgStream& stream, const Rational& value)
{
    return insertAsInOstream(stream, value);
}

} // namespace Kr

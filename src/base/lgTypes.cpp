#include <base/lgTypes.h>

#include <base/assert.h>
#include <base/lgEx.h>
#include <base/raise.h>

#include <cstring>

namespace Kr
{

namespace
{

constexpr const char* levelNames[LgTypes::NUM_LEVELS] = {
    "Internal Error", "Fatal Error", "Error", "Warning", "Informational", "Tracing", "Profiling"};

} // namespace

const char* LgTypes::getLevelName(Level l)
{
    KR_ASSERT_AT(l < NUM_LEVELS, 42);
    return levelNames[l];
}

LgTypes::Level LgTypes::getLevelFromString(const char* s)
{
    KR_ASSERT_AT(s, 49);
    for (unsigned int level = 0; level < NUM_LEVELS; ++level)
        if (std::strcmp(s, levelNames[level]) == 0)
            return static_cast<Level>(level);
    raise<LgEx::InvalidLevelString>(KR_HERE_AT(58), s);
}

} // namespace Kr

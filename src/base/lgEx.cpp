#include <base/lgEx.h>

namespace Kr
{

LgEx::InvalidLevelString::InvalidLevelString(const char* file, int line, const char* text)
    : ExConcrete(file, line)
{
    setReason("Invalid level string specified: ");
    setReason(text);
}

} // namespace Kr

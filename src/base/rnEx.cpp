#include <base/rnEx.h>

namespace Kr
{

RnEx::RnEx(const char* file, int line) noexcept
    : ExBase(file, line)
{
}

RnEx::BadHistogram::BadHistogram(const char* file, int line, const char* problem)
    : ExConcrete(file, line)
{
    setReason("Histogram: ");
    setReason(problem);
}

RnEx::UnusableSource::UnusableSource(const char* file, int line, const char* name)
    : ExConcrete(file, line)
{
    setReason("Source '");
    setReason(name);
    setReason("' gives no sample that can be used.");
}

} // namespace Kr

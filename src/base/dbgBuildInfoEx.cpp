#include <base/dbgBuildInfoEx.h>

namespace Kr
{

DbgBuildInfoEx::DbgBuildInfoEx(const char* file, int line) noexcept
    : ExBase(file, line)
{
}

DbgBuildInfoEx::ExMismatch::ExMismatch(const char* file, int line, const char* sentence)
    : ExConcrete(file, line)
{
    setReason(sentence);
}

} // namespace Kr

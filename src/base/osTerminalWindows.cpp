#include <base/osTerminal.h>

#include <platform/platform.h>

namespace Kr
{

bool OsTerminal::isTerminal(Stream stream) noexcept
{
    return _isatty(stream) != 0;
}

} // namespace Kr

#include <base/internal/errors/invariant.h>

#include <platform/platform.h>

#include <cstdlib>

namespace Kr
{

void failInvariant(const char* file, int line, const char* text) noexcept
{
    _assert(text, file, static_cast<unsigned>(line));
    std::abort(); // the runtime does not promise that it does not return
}

} // namespace Kr

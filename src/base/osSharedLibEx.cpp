#include <base/osSharedLibEx.h>

#include <cstdio>

namespace Kr
{

OsSharedLibEx::OsSharedLibEx(const char* file, int line) noexcept
    : ExBase(file, line)
{
}

OsSharedLibEx::ExNotLoaded::ExNotLoaded(const char* file, int line, const char* library,
                                        const char* systemReason)
    : ExConcrete(file, line)
{
    char reason[reasonSize];
    std::snprintf(reason, sizeof reason, "Cannot load the library '%.256s': %s", library,
                  systemReason);
    setReason(reason);
}

OsSharedLibEx::ExNoSymbol::ExNoSymbol(const char* file, int line, const char* library,
                                      const char* symbol, const char* systemReason)
    : ExConcrete(file, line)
{
    char reason[reasonSize];
    std::snprintf(reason, sizeof reason, "The library '%.256s' has no symbol '%.256s': %s", library,
                  symbol, systemReason);
    setReason(reason);
}

} // namespace Kr

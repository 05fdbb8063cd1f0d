#include <base/inSingletonEx.h>

#include <base/internal/errors/fixedText.h>

#include <cstdio>

namespace Kr
{

InSingletonEx::InSingletonEx(const char* file, int line, const char* className,
                             const char* text) noexcept
    : InEx(file, line)
{
    char reason[reasonSize];
    std::snprintf(reason, sizeof reason, "%s %s.", orEmpty(className), text);
    setReason(reason);
}

InSingletonEx::ExNotInitialized::ExNotInitialized(const char* file, int line, const char* className)
    : ExConcrete(file, line, className, "is not initialized")
{
}

InSingletonEx::ExAlreadyInitialized::ExAlreadyInitialized(const char* file, int line,
                                                          const char* className)
    : ExConcrete(file, line, className, "has already been initialized")
{
}

InSingletonEx::ExAlreadyDestroyed::ExAlreadyDestroyed(const char* file, int line,
                                                      const char* className)
    : ExConcrete(file, line, className, "has already been destroyed")
{
}

} // namespace Kr

#include <base/prEx.h>

#include <base/internal/errors/fixedText.h>

#include <cstdio>

namespace Kr
{

namespace
{

/// What follows a name that there is not.
const char* introduce(const char* nearest)
{
    return *nearest != '\0' ? "; nearest: " : "";
}

} // namespace

PrEx::PrEx(const char* file, int line) noexcept
    : ExBase(file, line)
{
}

PrEx::ExInvalidPath::ExInvalidPath(const char* file, int line, const char* path, const char* fault)
    : ExConcrete(file, line)
{
    char reason[reasonSize];
    std::snprintf(reason, sizeof reason, "Invalid counter path '%.256s': %s.", orEmpty(path),
                  fault);
    setReason(reason);
}

PrEx::ExUnknownObject::ExUnknownObject(const char* file, int line, const char* object,
                                       const char* nearest)
    : ExConcrete(file, line)
{
    char reason[reasonSize];
    std::snprintf(reason, sizeof reason, "There is no counter object '%.256s'%s%.512s.", object,
                  introduce(nearest), nearest);
    setReason(reason);
}

PrEx::ExUnknownCounter::ExUnknownCounter(const char* file, int line, const char* object,
                                         const char* counter, const char* nearest)
    : ExConcrete(file, line)
{
    char reason[reasonSize];
    std::snprintf(reason, sizeof reason, "The object '%.128s' has no counter '%.256s'%s%.512s.",
                  object, counter, introduce(nearest), nearest);
    setReason(reason);
}

PrEx::ExUnknownInstance::ExUnknownInstance(const char* file, int line, const char* object,
                                           const char* instance, const char* nearest)
    : ExConcrete(file, line)
{
    char reason[reasonSize];
    if (*nearest == '\0')
        std::snprintf(reason, sizeof reason,
                      "The object '%.128s' has no instances, not '%.256s' either.", object,
                      instance);
    else if (*instance == '\0')
        std::snprintf(reason, sizeof reason, "The object '%.128s' needs an instance%s%.512s.",
                      object, introduce(nearest), nearest);
    else
        std::snprintf(reason, sizeof reason,
                      "The object '%.128s' has no instance '%.256s'%s%.512s.", object, instance,
                      introduce(nearest), nearest);
    setReason(reason);
}

PrEx::ExNoValue::ExNoValue(const char* file, int line, const char* path, const char* why)
    : ExConcrete(file, line)
{
    char reason[reasonSize];
    std::snprintf(reason, sizeof reason, "The counter '%.256s' has no value: %.512s.", path, why);
    setReason(reason);
}

PrEx::ExSystem::ExSystem(const char* file, int line, unsigned long status, const char* systemText)
    : ExConcrete(file, line)
    , _status(status)
{
    char reason[reasonSize];
    std::snprintf(reason, sizeof reason,
                  "The performance counters cannot be read: %.512s (status 0x%08lx)", systemText,
                  status);
    setReason(reason);
}

} // namespace Kr

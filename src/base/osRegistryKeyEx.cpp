#include <base/osRegistryKeyEx.h>

#include <base/internal/errors/fixedText.h>
#include <base/internal/errors/systemError.h>

#include <cstdio>

namespace Kr
{

namespace
{

constexpr int cut = 256;

} // namespace

OsRegistryKeyEx::OsRegistryKeyEx(const char* file, int line) noexcept
    : ExBase(file, line)
{
}

void OsRegistryKeyEx::formatReason(const char* format, const char* first,
                                   const char* second) noexcept
{
    char reason[reasonSize];
    std::snprintf(reason, sizeof reason, format, cut, orEmpty(first), cut, orEmpty(second));
    setReason(reason);
}

OsRegistryKeyEx::ExNoKey::ExNoKey(const char* file, int line, const char* key)
    : ExConcrete(file, line)
{
    formatReason("There is no key '%.*s'.", key);
}

OsRegistryKeyEx::ExNoValue::ExNoValue(const char* file, int line, const char* key,
                                      const char* value)
    : ExConcrete(file, line)
{
    formatReason("The key '%.*s' has no value '%.*s'.", key, value);
}

OsRegistryKeyEx::ExWrongType::ExWrongType(const char* file, int line, const char* key,
                                          const char* value, const char* found,
                                          const char* expected)
    : ExConcrete(file, line)
{
    formatReason("The key '%.*s' has a value '%.*s' that is ", key, value);
    formatReason("%.*s, not %.*s.", found, expected);
}

OsRegistryKeyEx::ExReadOnly::ExReadOnly(const char* file, int line, const char* key)
    : ExConcrete(file, line)
{
    formatReason("The key '%.*s' is open for reading only.", key);
}

OsRegistryKeyEx::ExInvalidName::ExInvalidName(const char* file, int line, const char* name,
                                              const char* why)
    : ExConcrete(file, line)
{
    formatReason("'%.*s' cannot be the name of a key or value: %.*s.", name, why);
}

OsRegistryKeyEx::ExInvalidValue::ExInvalidValue(const char* file, int line, const char* key,
                                                const char* value, const char* why)
    : ExConcrete(file, line)
{
    formatReason("The key '%.*s' cannot take the value '%.*s': ", key, value);
    formatReason("%.*s.", why);
}

OsRegistryKeyEx::ExRefused::ExRefused(const char* file, int line, const char* action,
                                      const char* name, unsigned long errorCode, const char* detail)
    : ExConcrete(file, line)
    , _errorCode(errorCode)
{
    char system[reasonSize];
    formatSystemError(errorCode, system, sizeof system);
    formatReason("Cannot %.*s '%.*s': ", action, name);
    formatReason("%.*s", system);
    if (*orEmpty(detail) != '\0')
        formatReason(" (%.*s)", detail);
}

} // namespace Kr

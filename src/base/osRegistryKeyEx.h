#pragma once

/// @file
/// What goes wrong with keys of the registry. Names in a reason are cut at 256 characters.
/// @code{.cpp}
/// #include <base/osRegistryKey.h>
///
/// void rememberWidth(Kr::OsRegistryKey& key, int width)
/// {
///     try
///     {
///         key.setInteger32("Width", width);
///     }
///     catch (const Kr::OsRegistryKeyEx::ExRefused& error) // a full disk, a damaged file, ...
///     {
///         std::cerr << error.getReason() << '\n';
///     }
/// }
/// @endcode

#include <base/exBase.h>

namespace Kr
{

class KR_BASE_API OsRegistryKeyEx : public ExBase
{
public:
    class ExNoKey;
    class ExNoValue;
    class ExWrongType;
    class ExReadOnly;
    class ExInvalidName;
    class ExInvalidValue;
    class ExRefused;

protected:
    OsRegistryKeyEx(const char* file, int line) noexcept;

    /// Sets the reason from a format with a "%.*s" for each of the texts, with a precision of 256;
    /// null counts as empty.
    void formatReason(const char* format, const char* first, const char* second = nullptr) noexcept;
};

/// "There is no key '%.*s'."
class KR_BASE_API OsRegistryKeyEx::ExNoKey
    : public ExConcrete<OsRegistryKeyEx::ExNoKey, std::runtime_error, OsRegistryKeyEx>
{
public:
    ExNoKey(const char* file, int line, const char* key);
};

/// "The key '%.*s' has no value '%.*s'."
class KR_BASE_API OsRegistryKeyEx::ExNoValue
    : public ExConcrete<OsRegistryKeyEx::ExNoValue, std::runtime_error, OsRegistryKeyEx>
{
public:
    ExNoValue(const char* file, int line, const char* key, const char* value);
};

/// "The key '%.*s' has a value '%.*s' that is %s, not %s.": what is stored and what was asked for.
class KR_BASE_API OsRegistryKeyEx::ExWrongType
    : public ExConcrete<OsRegistryKeyEx::ExWrongType, std::runtime_error, OsRegistryKeyEx>
{
public:
    ExWrongType(const char* file, int line, const char* key, const char* value, const char* found,
                const char* expected);
};

/// "The key '%.*s' is open for reading only."
class KR_BASE_API OsRegistryKeyEx::ExReadOnly
    : public ExConcrete<OsRegistryKeyEx::ExReadOnly, std::logic_error, OsRegistryKeyEx>
{
public:
    ExReadOnly(const char* file, int line, const char* key);
};

/// "'%.*s' cannot be the name of a key or value: " and why.
class KR_BASE_API OsRegistryKeyEx::ExInvalidName
    : public ExConcrete<OsRegistryKeyEx::ExInvalidName, std::invalid_argument, OsRegistryKeyEx>
{
public:
    ExInvalidName(const char* file, int line, const char* name, const char* why);
};

/// "The key '%.*s' cannot take the value '%.*s': " and why.
class KR_BASE_API OsRegistryKeyEx::ExInvalidValue
    : public ExConcrete<OsRegistryKeyEx::ExInvalidValue, std::invalid_argument, OsRegistryKeyEx>
{
public:
    ExInvalidValue(const char* file, int line, const char* key, const char* value, const char* why);
};

/// "Cannot %s '%.*s': " and the system's reason: what was to be done, and the key, with the value
/// if there is one.
class KR_BASE_API OsRegistryKeyEx::ExRefused
    : public ExConcrete<OsRegistryKeyEx::ExRefused, std::runtime_error, OsRegistryKeyEx>
{
public:
    /// @param detail is put in parentheses behind the system's reason, unless it is empty
    ExRefused(const char* file, int line, const char* action, const char* name,
              unsigned long errorCode, const char* detail);

    /// The system's code, the same on all systems: 5 access denied, 19 write-protected, 33 locked
    /// by others for too long, 112 disk full, 206 name too long, 1015 damaged, 1018 removed
    /// meanwhile.
    unsigned long getErrorCode() const noexcept { return _errorCode; }

private:
    unsigned long _errorCode;
};

} // namespace Kr

#pragma once

/// @file
/// Exceptions that carry an error of the system.
///
/// Build or raise one immediately after the failing call, before anything else can change the
/// thread's error state:
/// @code{.cpp}
/// #include <base/raise.h>
///
/// void renameFile(const char* from, const char* to)
/// {
///     if (std::rename(from, to) != 0)
///         Kr::raise<Kr::ExSysErrorANSI>(KR_HERE);
/// }
/// @endcode

#include <base/exBase.h>

namespace Kr
{

/// What the two kinds of system error have in common; the reason is theirs.
class KR_BASE_API ExSysError : public std::runtime_error, public virtual ExBase
{
public:
    const char* what() const noexcept override { return getReason(); }

protected:
    ExSysError(const char* file, int line);
};

/// An error of the runtime library: the calling thread's `errno` and its text.
class KR_BASE_API ExSysErrorANSI : public ExSysError
{
public:
    ExSysErrorANSI(const char* file, int line);
    ExBase* clone() const override;

    /// The `errno` value at construction.
    int getError() const noexcept { return _error; }

private:
    ExSysErrorANSI(int error, const char* file, int line);

    int _error;
};

/// An error of the operating system: the calling thread's last error code and the system's message
/// for it, less at most two trailing line-break characters; "Unknown system error %lu." with the
/// code when the system has none.
class KR_BASE_API ExSysErrorWindows : public ExSysError
{
public:
    ExSysErrorWindows(const char* file, int line);
    ExBase* clone() const override;

    /// The last error code at construction.
    unsigned long getErrorCode() const noexcept { return _errorCode; }

private:
    ExSysErrorWindows(unsigned long errorCode, const char* file, int line);

    unsigned long _errorCode;
};

} // namespace Kr

#include <base/exSysError.h>

#include <platform/platform.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace Kr
{

ExSysError::ExSysError(const char* file, int line)
    : ExBase(file, line)
    , std::runtime_error("")
{
}

// The error state is read in the first expression evaluated, and the public constructors delegate
// so that building the bases cannot change it first.

ExSysErrorANSI::ExSysErrorANSI(const char* file, int line)
    : ExSysErrorANSI(errno, file, line)
{
}

ExSysErrorANSI::ExSysErrorANSI(int error, const char* file, int line)
    : ExBase(file, line)
    , ExSysError(file, line)
    , _error(error)
{
    setReason(std::strerror(error));
}

ExBase* ExSysErrorANSI::clone() const
{
    return new ExSysErrorANSI(*this);
}

namespace
{

/// The system ends its messages with a carriage return and a line feed.
void cutLineBreak(char* text, std::size_t length) noexcept
{
    for (std::size_t i = length; i > 0 && i + 2 > length; --i)
        if (text[i - 1] == '\r' || text[i - 1] == '\n')
            text[i - 1] = '\0';
}

} // namespace

ExSysErrorWindows::ExSysErrorWindows(const char* file, int line)
    : ExSysErrorWindows(GetLastError(), file, line)
{
}

ExSysErrorWindows::ExSysErrorWindows(unsigned long errorCode, const char* file, int line)
    : ExBase(file, line)
    , ExSysError(file, line)
    , _errorCode(errorCode)
{
    char text[reasonSize];
    const DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                        nullptr, static_cast<DWORD>(errorCode), 0, text,
                                        static_cast<DWORD>(sizeof text), nullptr);
    if (length == 0)
        std::snprintf(text, sizeof text, "Unknown system error %lu.", errorCode);
    else
        cutLineBreak(text, length);
    setReason(text);
}

ExBase* ExSysErrorWindows::clone() const
{
    return new ExSysErrorWindows(*this);
}

} // namespace Kr

#include <base/exSysError.h>

#include <base/internal/errors/systemError.h>
#include <platform/platform.h>

#include <cerrno>
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
    formatSystemError(errorCode, text, sizeof text);
    setReason(text);
}

ExBase* ExSysErrorWindows::clone() const
{
    return new ExSysErrorWindows(*this);
}

} // namespace Kr

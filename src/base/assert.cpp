#include <base/assert.h>

#include <base/exBase.h>
#include <base/internal/errors/fixedText.h>
#include <base/objPtr.h>
#include <base/raise.h>

#include <cstdio>
#include <cstring>

namespace Kr
{

namespace
{

/// The trace gets the position in this module, the exception keeps the caller's.
[[noreturn]] void raiseInternalError(const char* file, int line, const char* reason)
{
    const ObjPtr<ExInternalError> error(new ExInternalError(file, line, reason));
    raise(*error, KR_HERE);
}

} // namespace

void Assertions::throwAssertionFailed(const char* file, int line, const char* expression)
{
    char reason[ExBase::reasonSize];
    std::snprintf(reason, sizeof reason, "Assertion '%s' failed.", orEmpty(expression));
    raiseInternalError(file, line, reason);
}

void Assertions::throwSysAssertionFailed(const char* file, int line, const char* expression,
                                         int errorNumber)
{
    char reason[ExBase::reasonSize];
    std::snprintf(reason, sizeof reason, "Assertion '%s' failed, errno = %d (%s).",
                  orEmpty(expression), errorNumber, std::strerror(errorNumber));
    raiseInternalError(file, line, reason);
}

void Assertions::throwProgramAborted(const char* file, int line)
{
    raiseInternalError(file, line, "Program aborted.");
}

} // namespace Kr

#include <base/osEnv.h>

#include <base/assert.h>
#include <base/exSysError.h>
#include <base/raise.h>
#include <platform/platform.h>

#include <cstdlib>
#include <cstring>

namespace Kr
{

const char* OsEnv::getVariable(const char* name)
{
    return name != nullptr && *name != '\0' ? std::getenv(name) : nullptr;
}

void OsEnv::putVariable(const char* assignment)
{
    KR_ASSERT(assignment != nullptr);
    KR_ASSERT(*assignment != '=' && std::strchr(assignment, '=') != nullptr);
    if (_putenv(assignment) != 0)
        raise<ExSysErrorANSI>(KR_HERE);
}

char** OsEnv::getBlock()
{
    return _environ;
}

} // namespace Kr

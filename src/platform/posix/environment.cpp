#include <platform/platform.h>

#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

extern char** environ;

char** krEnvironment() noexcept
{
    return environ;
}

int _putenv(const char* assignment) noexcept
{
    const char* equals = assignment != nullptr ? std::strchr(assignment, '=') : nullptr;
    if (equals == nullptr || equals == assignment)
        return -1;
    try
    {
        const std::string name(assignment, equals);
        return equals[1] == '\0' ? ::unsetenv(name.c_str()) : ::setenv(name.c_str(), equals + 1, 1);
    }
    catch (const std::bad_alloc&)
    {
        return -1;
    }
}

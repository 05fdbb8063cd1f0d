#include <platform/console.h>

#include <unistd.h>

bool krEnableColours() noexcept
{
    return isatty(STDOUT_FILENO) != 0;
}

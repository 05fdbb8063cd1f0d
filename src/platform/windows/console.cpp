#include <platform/console.h>
#include <platform/platform.h>

bool krEnableColours() noexcept
{
    constexpr DWORD takesCodes = 0x4; // of Windows 10; the compiler's headers may be older
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    DWORD mode = 0;
    return GetConsoleMode(output, &mode) != 0 && SetConsoleMode(output, mode | takesCodes) != 0;
}

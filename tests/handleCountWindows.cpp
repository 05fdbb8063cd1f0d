#include "handleCount.h"

#include <windows.h>

unsigned HandleCount::get()
{
    DWORD count = 0;
    GetProcessHandleCount(GetCurrentProcess(), &count);
    return count;
}

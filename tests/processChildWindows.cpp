#include "processChild.h"

#include <windows.h>

namespace
{

BOOL WINAPI ignore(DWORD)
{
    return 1;
}

} // namespace

void ProcessChild::ignoreEnd()
{
    SetConsoleCtrlHandler(ignore, 1);
}

#include "processChild.h"

#include <windows.h>

namespace
{

BOOL WINAPI ignore(DWORD)
{
    return 1;
}

LRESULT CALLBACK handle(HWND window, UINT message, WPARAM first, LPARAM second)
{
    if (message == WM_CLOSE)
        PostQuitMessage(0);
    return message == WM_CLOSE ? 0 : DefWindowProcA(window, message, first, second);
}

} // namespace

void ProcessChild::ignoreEnd()
{
    SetConsoleCtrlHandler(ignore, 1);
}

void ProcessChild::listenForEnd()
{
    ignoreEnd(); // a group's console is broken besides
    WNDCLASSA kind{};
    kind.lpfnWndProc = handle;
    kind.lpszClassName = "KrProcessChild";
    RegisterClassA(&kind);
    CreateWindowA(kind.lpszClassName, "child", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 99, 99,
                  nullptr, nullptr, nullptr, nullptr);
}

void ProcessChild::awaitEnd()
{
    for (MSG message{}; GetMessageA(&message, nullptr, 0, 0) > 0;)
        DispatchMessageA(&message);
}

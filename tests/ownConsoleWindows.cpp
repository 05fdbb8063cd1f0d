#include "ownConsole.h"

#include <utility>

#include <windows.h>

OwnConsole::OwnConsole()
    : _isOurs(GetConsoleCP() == 0)
{
    if (!_isOurs)
        return;
    exchangeStreams();
    FreeConsole();
    AllocConsole();
    exchangeStreams();
}

OwnConsole::~OwnConsole()
{
    if (!_isOurs)
        return;
    exchangeStreams();
    FreeConsole(); // with its streams
    exchangeStreams();
}

void OwnConsole::exchangeStreams()
{
    constexpr DWORD numbers[] = {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE};
    for (int i = 0; i < 3; ++i)
        SetStdHandle(numbers[i], std::exchange(_others[i], GetStdHandle(numbers[i])));
}

#include "twoProcesses.h"

#include <cstdlib>

#include <windows.h>

const int processesOfAFork = 1;

SharedNumbers::SharedNumbers(const std::string& path)
{
    const HANDLE file =
        CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                    nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    const HANDLE mapping =
        CreateFileMappingA(file, nullptr, PAGE_READWRITE, 0, sizeof(Numbers), nullptr);
    CloseHandle(file);
    void* const memory =
        mapping != nullptr ? MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, 0) : nullptr;
    if (memory == nullptr)
        std::abort();
    CloseHandle(mapping);
    _numbers = static_cast<Numbers*>(memory);
}

SharedNumbers::~SharedNumbers()
{
    UnmapViewOfFile(_numbers);
}

bool isForkedChild()
{
    return false;
}

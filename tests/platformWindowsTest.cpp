// What Windows has to itself.

#include "ownConsole.h"

#include <platform/console.h>

#include <gtest/gtest.h>

#include <windows.h>

namespace
{

/// Has the standard output lead to the file while the call is made; returns the console's mode too.
bool enableColours(const char* path, DWORD& mode)
{
    const HANDLE kept = GetStdHandle(STD_OUTPUT_HANDLE);
    const HANDLE file =
        CreateFileA(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                    OPEN_EXISTING, 0, nullptr);
    EXPECT_NE(file, INVALID_HANDLE_VALUE) << path;
    SetStdHandle(STD_OUTPUT_HANDLE, file);
    const bool result = krEnableColours();
    GetConsoleMode(file, &mode);
    SetStdHandle(STD_OUTPUT_HANDLE, kept);
    CloseHandle(file);
    return result;
}

TEST(PlatformConsole, AConsoleShowsColours)
{
    constexpr DWORD takesCodes = 4;
    const OwnConsole console;
    DWORD mode = 0;
    EXPECT_TRUE(enableColours("CONOUT$", mode));
    EXPECT_NE(mode & takesCodes, 0U);
    EXPECT_FALSE(enableColours("NUL", mode));
}

} // namespace

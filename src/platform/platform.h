#pragma once

/// @file
/// The operating-system calls that the library is written to: on Windows the system's own,
/// elsewhere the same subset of them, with the same error codes, over POSIX (`platform/posix`).
///
/// Only the `*Windows` and `*WinNT` halves and the system-error class include this header.

#if defined(_WIN32)

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <mmsystem.h>

#include <stdlib.h>

#else

#include <cstddef>
#include <cstdint>

using BOOL = int;
using DWORD = std::uint32_t;
using HANDLE = void*;

// Errors (posix/error.cpp)

constexpr DWORD ERROR_SUCCESS = 0;
constexpr DWORD ERROR_INVALID_FUNCTION = 1;
constexpr DWORD ERROR_FILE_NOT_FOUND = 2;
constexpr DWORD ERROR_PATH_NOT_FOUND = 3;
constexpr DWORD ERROR_TOO_MANY_OPEN_FILES = 4;
constexpr DWORD ERROR_ACCESS_DENIED = 5;
constexpr DWORD ERROR_INVALID_HANDLE = 6;
constexpr DWORD ERROR_NOT_ENOUGH_MEMORY = 8;
constexpr DWORD ERROR_WRITE_PROTECT = 19;
constexpr DWORD ERROR_SHARING_VIOLATION = 32;
constexpr DWORD ERROR_LOCK_VIOLATION = 33;
constexpr DWORD ERROR_HANDLE_EOF = 38;
constexpr DWORD ERROR_HANDLE_DISK_FULL = 39;
constexpr DWORD ERROR_FILE_EXISTS = 80;
constexpr DWORD ERROR_INVALID_PARAMETER = 87;
constexpr DWORD ERROR_DISK_FULL = 112;
constexpr DWORD ERROR_INSUFFICIENT_BUFFER = 122;
constexpr DWORD ERROR_INVALID_NAME = 123;
constexpr DWORD ERROR_DIR_NOT_EMPTY = 145;
constexpr DWORD ERROR_ALREADY_EXISTS = 183;
constexpr DWORD ERROR_FILENAME_EXCED_RANGE = 206;
constexpr DWORD ERROR_MR_MID_NOT_FOUND = 317;
constexpr DWORD ERROR_IO_DEVICE = 1117;

constexpr DWORD FORMAT_MESSAGE_IGNORE_INSERTS = 0x200;
constexpr DWORD FORMAT_MESSAGE_FROM_SYSTEM = 0x1000;

DWORD GetLastError() noexcept;
void SetLastError(DWORD code) noexcept;

/// Only from the system's table, in the default language. Returns the text's length without its
/// terminator, or 0 with the last error set.
DWORD FormatMessageA(DWORD flags, const void* source, DWORD code, DWORD language, char* buffer,
                     DWORD size, void* arguments) noexcept;

/// For the other sources of this folder: the code of the system that an `errno` value stands for.
DWORD krErrorFromErrno(int error) noexcept;

// Environment (posix/environment.cpp)

/// The process's environment block: "NAME=value" texts, ended by a null.
char** krEnvironment() noexcept;
#define _environ (krEnvironment())

/// "NAME=value" sets, "NAME=" removes; the text is copied. Returns 0, or -1 if it has no name or no
/// equals sign.
int _putenv(const char* assignment) noexcept;

#endif

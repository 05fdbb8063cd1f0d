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
#include <sys/timeb.h>

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

/// The kernel's number of the calling thread.
DWORD GetCurrentThreadId() noexcept;

/// For the other sources of this folder: the code of the system that an `errno` value stands for.
DWORD krErrorFromErrno(int error) noexcept;

// Environment (posix/environment.cpp)

/// The process's environment block: "NAME=value" texts, ended by a null.
char** krEnvironment() noexcept;
#define _environ (krEnvironment())

/// "NAME=value" sets, "NAME=" removes; the text is copied. Returns 0, or -1 if it has no name or no
/// equals sign.
int _putenv(const char* assignment) noexcept;

// Clocks (posix/counter.cpp)

union LARGE_INTEGER
{
    std::int64_t QuadPart;
};

/// The high-resolution counter. The processor's own, read without waiting for the instructions
/// before it, where that is known to run at one rate and alike on every core; the system's
/// monotonic clock in nanoseconds elsewhere, or when the environment holds
/// KR_COUNTER_SOURCE=system. Returns 0 with errno set if the clock cannot be read.
BOOL QueryPerformanceCounter(LARGE_INTEGER* count) noexcept;

/// Its ticks per second, above 0. The processor's counter is measured once, at the first call,
/// which takes some 2 milliseconds.
BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency) noexcept;

struct __timeb64 // NOLINT(bugprone-reserved-identifier): the runtime's name
{
    std::int64_t time;      ///< seconds since 1970-01-01 00:00 UTC
    unsigned short millitm; ///< milliseconds of the second
};

/// The time of day; the fields for the time zone are left out.
void _ftime64(__timeb64* now) noexcept;

#endif

// Processor identification, on every system

#if defined(__i386__) || defined(__x86_64__)
#include <cpuid.h>
#endif

#include <cstdint>

struct KrProcessorRegisters
{
    std::uint32_t eax = 0;
    std::uint32_t ebx = 0;
    std::uint32_t ecx = 0;
    std::uint32_t edx = 0;
};

/// What the processor identification instruction answers to a leaf; all zero on a processor that
/// does not have it, so that leaf 0 gives 0 as the maximum leaf.
inline KrProcessorRegisters krIdentifyProcessor(std::uint32_t leaf) noexcept
{
    KrProcessorRegisters answer;
#if defined(__i386__) || defined(__x86_64__)
    __cpuid_count(leaf, 0, answer.eax, answer.ebx, answer.ecx, answer.edx);
#else
    static_cast<void>(leaf);
#endif
    return answer;
}

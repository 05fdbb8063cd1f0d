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

/// A process of this system does not fork.
inline void krOnFork(void (*)(), void (*)(), void (*)()) noexcept
{
}

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

// Handles (posix/handle.cpp)

extern char krInvalidHandle; // only its address matters
#define INVALID_HANDLE_VALUE (static_cast<HANDLE>(&krInvalidHandle))

BOOL CloseHandle(HANDLE handle) noexcept;

// Files (posix/file.cpp). Paths take both separators; `/` is drive C:.

constexpr DWORD ERROR_NOT_SAME_DEVICE = 17;
constexpr DWORD ERROR_NEGATIVE_SEEK = 131;

constexpr DWORD GENERIC_READ = 0x80000000;
constexpr DWORD GENERIC_WRITE = 0x40000000;
constexpr DWORD DELETE = 0x00010000;
constexpr DWORD FILE_READ_DATA = 0x0001;
constexpr DWORD FILE_WRITE_DATA = 0x0002;
constexpr DWORD FILE_APPEND_DATA = 0x0004; ///< without FILE_WRITE_DATA: every write appends

constexpr DWORD FILE_SHARE_READ = 0x1;
constexpr DWORD FILE_SHARE_WRITE = 0x2;
constexpr DWORD FILE_SHARE_DELETE = 0x4;

constexpr DWORD CREATE_NEW = 1;
constexpr DWORD CREATE_ALWAYS = 2;
constexpr DWORD OPEN_EXISTING = 3;
constexpr DWORD OPEN_ALWAYS = 4;
constexpr DWORD TRUNCATE_EXISTING = 5;

constexpr DWORD FILE_ATTRIBUTE_READONLY = 0x01;
constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x80;

constexpr DWORD FILE_BEGIN = 0;
constexpr DWORD FILE_CURRENT = 1;
constexpr DWORD FILE_END = 2;

constexpr DWORD LOCKFILE_FAIL_IMMEDIATELY = 0x1;
constexpr DWORD LOCKFILE_EXCLUSIVE_LOCK = 0x2;

constexpr DWORD MOVEFILE_REPLACE_EXISTING = 0x1;

struct SECURITY_ATTRIBUTES;

struct FILETIME
{
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
};

struct OVERLAPPED
{
    DWORD Offset;
    DWORD OffsetHigh;
    HANDLE hEvent;
};

struct BY_HANDLE_FILE_INFORMATION
{
    DWORD dwFileAttributes;
    FILETIME ftCreationTime; ///< of the last change of the file's state
    FILETIME ftLastAccessTime;
    FILETIME ftLastWriteTime;
    DWORD dwVolumeSerialNumber;
    DWORD nFileSizeHigh;
    DWORD nFileSizeLow;
    DWORD nNumberOfLinks;
    DWORD nFileIndexHigh;
    DWORD nFileIndexLow;
};

/// Opens a file, not a directory. `access` 0 asks for the file's information only and takes no part
/// in the sharing. What one open denies, no other gets, in this process or another one of the
/// library. Only the read-only attribute is honoured; there are no templates.
HANDLE CreateFileA(const char* path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security,
                   DWORD disposition, DWORD flagsAndAttributes, HANDLE templateFile) noexcept;

/// On a failure the count tells how many bytes had been written.
BOOL WriteFile(HANDLE file, const void* data, DWORD size, DWORD* written,
               OVERLAPPED* overlapped) noexcept;
BOOL SetFilePointerEx(HANDLE file, LARGE_INTEGER distance, LARGE_INTEGER* position,
                      DWORD method) noexcept;
BOOL SetEndOfFile(HANDLE file) noexcept;
BOOL GetFileSizeEx(HANDLE file, LARGE_INTEGER* size) noexcept;
BOOL FlushFileBuffers(HANDLE file) noexcept;
BOOL GetFileInformationByHandle(HANDLE file, BY_HANDLE_FILE_INFORMATION* information) noexcept;

/// Locks belong to the handle and end with it, also when the process is killed. Ranges below 2^62;
/// the handle needs access for reading to share a range, for writing to own it.
BOOL LockFileEx(HANDLE file, DWORD flags, DWORD reserved, DWORD sizeLow, DWORD sizeHigh,
                OVERLAPPED* range) noexcept;
BOOL UnlockFileEx(HANDLE file, DWORD reserved, DWORD sizeLow, DWORD sizeHigh,
                  OVERLAPPED* range) noexcept;

/// Fails with the sharing violation while the file is open somewhere without FILE_SHARE_DELETE.
BOOL MoveFileExA(const char* from, const char* to, DWORD flags) noexcept;
BOOL CreateDirectoryA(const char* path, SECURITY_ATTRIBUTES* security) noexcept;

// Processes (posix/process.cpp)

DWORD GetCurrentProcessId() noexcept;

/// Has `before` called in the process that forks, then `inParent` or `inChild`. Once in a process.
void krOnFork(void (*before)(), void (*inParent)(), void (*inChild)()) noexcept;

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

/// What the processor identification instruction answers to a leaf and its subleaf; all zero on a
/// processor that does not have it, so that leaf 0 gives 0 as the maximum leaf.
inline KrProcessorRegisters krIdentifyProcessor(std::uint32_t leaf,
                                                std::uint32_t subleaf = 0) noexcept
{
    KrProcessorRegisters answer;
#if defined(__i386__) || defined(__x86_64__)
    __cpuid_count(leaf, subleaf, answer.eax, answer.ebx, answer.ecx, answer.edx);
#else
    static_cast<void>(leaf);
    static_cast<void>(subleaf);
#endif
    return answer;
}

/// The register sets that the system saves for a process, as bits of the processor's extended
/// control register 0; 0 if the system keeps none.
inline std::uint64_t krGetEnabledRegisterSets() noexcept
{
#if defined(__i386__) || defined(__x86_64__)
    constexpr std::uint32_t enabledBySystem = 1U << 27;
    if ((krIdentifyProcessor(1).ecx & enabledBySystem) == 0)
        return 0;
    std::uint32_t low = 0;
    std::uint32_t high = 0;
    __asm__("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return std::uint64_t{high} << 32 | low;
#else
    return 0;
#endif
}

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
#include <tlhelp32.h>

#include <assert.h>
#include <direct.h>
#include <io.h>
#include <stdlib.h>
#include <sys/timeb.h>

/// A process of this system does not fork.
inline void krOnFork(void (*)(), void (*)(), void (*)()) noexcept
{
}

/// The system's texts say all that it tells of a library that does not load.
inline const char* krLoadDetail() noexcept
{
    return "";
}

/// The system's registry does not say where it is damaged.
inline const char* krRegistryDetail() noexcept
{
    return "";
}

#else

#include <cstddef>
#include <cstdint>

#include <pthread.h>

using BOOL = int;
using DWORD = std::uint32_t;
using LONG = std::int32_t;
using WORD = std::uint16_t;
using HANDLE = void*;

// Errors (posix/error.cpp)

constexpr DWORD ERROR_SUCCESS = 0;
constexpr DWORD ERROR_FILE_NOT_FOUND = 2;
constexpr DWORD ERROR_PATH_NOT_FOUND = 3;
constexpr DWORD ERROR_TOO_MANY_OPEN_FILES = 4;
constexpr DWORD ERROR_ACCESS_DENIED = 5;
constexpr DWORD ERROR_INVALID_HANDLE = 6;
constexpr DWORD ERROR_NOT_ENOUGH_MEMORY = 8;
constexpr DWORD ERROR_NO_MORE_FILES = 18;
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
constexpr DWORD ERROR_MOD_NOT_FOUND = 126;
constexpr DWORD ERROR_PROC_NOT_FOUND = 127;
constexpr DWORD ERROR_DIR_NOT_EMPTY = 145;
constexpr DWORD ERROR_ALREADY_EXISTS = 183;
constexpr DWORD ERROR_BAD_EXE_FORMAT = 193;
constexpr DWORD ERROR_FILENAME_EXCED_RANGE = 206;
constexpr DWORD ERROR_DIRECTORY = 267;
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

inline HANDLE krInvalidHandle() noexcept
{
    return reinterpret_cast<HANDLE>(std::intptr_t{-1}); // NOLINT: a number that no handle has
}
#define INVALID_HANDLE_VALUE krInvalidHandle()

BOOL CloseHandle(HANDLE handle) noexcept;

// Files (posix/file.cpp). Paths take both separators; `/` is drive C:.

constexpr DWORD ERROR_NOT_SAME_DEVICE = 17;
constexpr DWORD ERROR_NEGATIVE_SEEK = 131;

constexpr DWORD GENERIC_READ = 0x80000000;
constexpr DWORD GENERIC_WRITE = 0x40000000;
constexpr DWORD FILE_APPEND_DATA = 0x0004; ///< without GENERIC_WRITE: every write appends
constexpr DWORD DELETE = 0x00010000; ///< only what FILE_FLAG_DELETE_ON_CLOSE and registry keys need

constexpr DWORD FILE_SHARE_READ = 0x1;
constexpr DWORD FILE_SHARE_WRITE = 0x2;
constexpr DWORD FILE_SHARE_DELETE = 0x4;

constexpr DWORD CREATE_NEW = 1;
constexpr DWORD CREATE_ALWAYS = 2;
constexpr DWORD OPEN_EXISTING = 3;
constexpr DWORD OPEN_ALWAYS = 4;

constexpr DWORD FILE_ATTRIBUTE_READONLY = 0x01;
constexpr DWORD FILE_ATTRIBUTE_SYSTEM = 0x04; ///< a device, a pipe, a socket
constexpr DWORD FILE_ATTRIBUTE_DIRECTORY = 0x10;
constexpr DWORD FILE_ATTRIBUTE_ARCHIVE = 0x20;
constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x80;
constexpr DWORD FILE_ATTRIBUTE_REPARSE_POINT = 0x400;
constexpr DWORD FILE_FLAG_DELETE_ON_CLOSE = 0x04000000; ///< for an existing file, without sharing
constexpr DWORD INVALID_FILE_ATTRIBUTES = 0xFFFFFFFF;
constexpr DWORD INVALID_FILE_SIZE = 0xFFFFFFFF;
constexpr DWORD INVALID_SET_FILE_POINTER = 0xFFFFFFFF;
constexpr std::size_t MAX_PATH = 260;

constexpr DWORD FILE_BEGIN = 0;
constexpr DWORD FILE_CURRENT = 1;
constexpr DWORD FILE_END = 2;

constexpr DWORD LOCKFILE_FAIL_IMMEDIATELY = 0x1;
constexpr DWORD LOCKFILE_EXCLUSIVE_LOCK = 0x2;

constexpr DWORD MOVEFILE_REPLACE_EXISTING = 0x1;
constexpr DWORD MOVEFILE_COPY_ALLOWED = 0x2;  ///< takes no effect: never moves between devices
constexpr DWORD MOVEFILE_WRITE_THROUGH = 0x8; ///< takes no effect

constexpr DWORD FILE_TYPE_UNKNOWN = 0;
constexpr DWORD FILE_TYPE_DISK = 1;
constexpr DWORD FILE_TYPE_CHAR = 2;
constexpr DWORD FILE_TYPE_PIPE = 3;

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

/// Fewer bytes than asked for only before the end of the file, 0 at it; of a pipe as many as there
/// are.
BOOL ReadFile(HANDLE file, void* buffer, DWORD size, DWORD* read, OVERLAPPED* overlapped) noexcept;

/// On a failure the count tells how many bytes had been written.
BOOL WriteFile(HANDLE file, const void* data, DWORD size, DWORD* written,
               OVERLAPPED* overlapped) noexcept;
BOOL SetFilePointerEx(HANDLE file, LARGE_INTEGER distance, LARGE_INTEGER* position,
                      DWORD method) noexcept;
DWORD SetFilePointer(HANDLE file, LONG distance, LONG* distanceHigh, DWORD method) noexcept;
/// What a file grows by is allocated, where the file system can: a full disk is told here.
BOOL SetEndOfFile(HANDLE file) noexcept;
DWORD GetFileSize(HANDLE file, DWORD* sizeHigh) noexcept;
BOOL GetFileTime(HANDLE file, FILETIME* creation, FILETIME* lastAccess,
                 FILETIME* lastWrite) noexcept;
/// Times that are null stay.
BOOL SetFileTime(HANDLE file, const FILETIME* creation, const FILETIME* lastAccess,
                 const FILETIME* lastWrite) noexcept;
BOOL GetFileSizeEx(HANDLE file, LARGE_INTEGER* size) noexcept;
DWORD GetFileType(HANDLE file) noexcept;
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

/// Not a directory, not a read-only file, and not one that is open somewhere without
/// FILE_SHARE_DELETE. A link is removed itself.
BOOL DeleteFileA(const char* path) noexcept;

// What the host tells of files without opening them (posix/fileQuery.cpp). A link is what it leads
// to, and one to a directory a reparse point too; one that leads nowhere is only a reparse point.

enum GET_FILEEX_INFO_LEVELS
{
    GetFileExInfoStandard
};

struct WIN32_FILE_ATTRIBUTE_DATA
{
    DWORD dwFileAttributes;
    FILETIME ftCreationTime; ///< of the last change of the file's state
    FILETIME ftLastAccessTime;
    FILETIME ftLastWriteTime;
    DWORD nFileSizeHigh;
    DWORD nFileSizeLow;
};

DWORD GetFileAttributesA(const char* path) noexcept;
BOOL SetFileAttributesA(const char* path, DWORD attributes) noexcept; ///< only the read-only one
BOOL GetFileAttributesExA(const char* path, GET_FILEEX_INFO_LEVELS level, void* data) noexcept;

// Directories (posix/directory.cpp)

enum FINDEX_INFO_LEVELS
{
    FindExInfoBasic = 1 ///< here only names and attributes, the read-only one left out
};
enum FINDEX_SEARCH_OPS
{
    FindExSearchNameMatch
};
constexpr DWORD FIND_FIRST_EX_LARGE_FETCH = 0x2;

struct WIN32_FIND_DATAA
{
    DWORD dwFileAttributes;
    char cFileName[MAX_PATH];
};

/// Only for patterns that end in "*" as their last element.
HANDLE FindFirstFileExA(const char* pattern, FINDEX_INFO_LEVELS level, void* data,
                        FINDEX_SEARCH_OPS operation, void* filter, DWORD flags) noexcept;
BOOL FindNextFileA(HANDLE search, WIN32_FIND_DATAA* data) noexcept;
BOOL FindClose(HANDLE search) noexcept;
BOOL RemoveDirectoryA(const char* path) noexcept;

// Paths (posix/fullPath.cpp)

/// The process's current directory is on drive C:. Returns the length, or the size that is needed
/// if that is above `size`; 0 with the last error set.
DWORD GetFullPathNameA(const char* path, DWORD size, char* buffer, char** lastElement) noexcept;

/// The directory that TMPDIR names, or /tmp; ends in a separator. Returns as `GetFullPathNameA`.
DWORD GetTempPathA(DWORD size, char* buffer) noexcept;

/// The number of the current drive, 3 for C:.
int _getdrive() noexcept;

// Volumes (posix/volume.cpp)

constexpr unsigned DRIVE_NO_ROOT_DIR = 1;
constexpr unsigned DRIVE_FIXED = 3;
constexpr unsigned DRIVE_REMOTE = 4;

unsigned GetDriveTypeA(const char* root) noexcept;
/// Counts beyond 32 bits are cut to the largest.
BOOL GetDiskFreeSpaceA(const char* root, DWORD* sectorsPerCluster, DWORD* bytesPerSector,
                       DWORD* freeClusters, DWORD* totalClusters) noexcept;

/// Whether the descriptor is a terminal's.
int _isatty(int descriptor) noexcept;

// Dates (posix/date.cpp)

struct SYSTEMTIME
{
    WORD wYear;
    WORD wMonth;
    WORD wDayOfWeek; ///< 0 is Sunday
    WORD wDay;
    WORD wHour;
    WORD wMinute;
    WORD wSecond;
    WORD wMilliseconds;
};
struct TIME_ZONE_INFORMATION;

void GetSystemTimeAsFileTime(FILETIME* time) noexcept;
BOOL FileTimeToSystemTime(const FILETIME* fileTime, SYSTEMTIME* time) noexcept;
/// Both only for the process's own time zone, which is named by a null.
BOOL SystemTimeToTzSpecificLocalTime(const TIME_ZONE_INFORMATION* zone, const SYSTEMTIME* universal,
                                     SYSTEMTIME* local) noexcept;
BOOL TzSpecificLocalTimeToSystemTime(const TIME_ZONE_INFORMATION* zone, const SYSTEMTIME* local,
                                     SYSTEMTIME* universal) noexcept;
// Events (posix/event.cpp): automatic or manual, without names

constexpr DWORD INFINITE = 0xFFFFFFFF;
constexpr DWORD WAIT_OBJECT_0 = 0;
constexpr DWORD WAIT_TIMEOUT = 258;
constexpr DWORD WAIT_FAILED = 0xFFFFFFFF;

HANDLE CreateEventA(SECURITY_ATTRIBUTES* security, BOOL manualReset, BOOL initialState,
                    const char* name) noexcept;
BOOL SetEvent(HANDLE event) noexcept;
BOOL ResetEvent(HANDLE event) noexcept;

/// Releases those who wait at this moment, all or one by the event's kind, and leaves it reset.
BOOL PulseEvent(HANDLE event) noexcept;

/// Waits on events and processes.
DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) noexcept;

// Multimedia timers (posix/timer.cpp)

using UINT = unsigned int;
using DWORD_PTR = std::uintptr_t;
using MMRESULT = UINT;
using LPTIMECALLBACK = void (*)(UINT, UINT, DWORD_PTR, DWORD_PTR, DWORD_PTR);

constexpr MMRESULT MMSYSERR_NOERROR = 0;
constexpr MMRESULT MMSYSERR_INVALPARAM = 11;
constexpr MMRESULT TIMERR_NOERROR = 0;
constexpr MMRESULT TIMERR_NOCANDO = 97;

constexpr UINT TIME_ONESHOT = 0x00;
constexpr UINT TIME_PERIODIC = 0x01;
constexpr UINT TIME_CALLBACK_EVENT_SET = 0x10;
constexpr UINT TIME_CALLBACK_EVENT_PULSE = 0x20;

struct TIMECAPS
{
    UINT wPeriodMin; ///< milliseconds
    UINT wPeriodMax;
};

MMRESULT timeGetDevCaps(TIMECAPS* capabilities, UINT size) noexcept;

/// The system's timers are as fine as they get: only the period is checked.
MMRESULT timeBeginPeriod(UINT period) noexcept;
MMRESULT timeEndPeriod(UINT period) noexcept;

/// Starts a timer on an event, which stands in the place of the callback; returns 0 if it cannot.
/// No thread runs it: whoever waits on the event waits until the timer's next moment, an absolute
/// one, so that beats do not drift, and a thread is woken once for each.
MMRESULT timeSetEvent(UINT delay, UINT resolution, LPTIMECALLBACK event, DWORD_PTR user,
                      UINT flags) noexcept;
MMRESULT timeKillEvent(UINT timer) noexcept;

void Sleep(DWORD milliseconds) noexcept;

// Threads (posix/thread.cpp)

constexpr DWORD TLS_OUT_OF_INDEXES = 0xFFFFFFFF;

DWORD TlsAlloc() noexcept;
void* TlsGetValue(DWORD index) noexcept;
BOOL TlsSetValue(DWORD index, void* value) noexcept;
BOOL TlsFree(DWORD index) noexcept;

struct CRITICAL_SECTION
{
    pthread_mutex_t mutex; ///< recursive
};

void InitializeCriticalSection(CRITICAL_SECTION* section) noexcept;
void EnterCriticalSection(CRITICAL_SECTION* section) noexcept;
void LeaveCriticalSection(CRITICAL_SECTION* section) noexcept;
void DeleteCriticalSection(CRITICAL_SECTION* section) noexcept;

// Libraries (posix/module.cpp)

using HMODULE = void*;
using FARPROC = std::intptr_t (*)();

/// A name without a folder is looked for beside the program, then where the system looks. One
/// without an extension gets the system's.
HMODULE LoadLibraryA(const char* path) noexcept;
BOOL FreeLibrary(HMODULE library) noexcept;
FARPROC GetProcAddress(HMODULE library, const char* name) noexcept;

/// For the thread's last LoadLibraryA that failed: what the system's code for it leaves out, as
/// which further library was missing. Empty if there is nothing to add.
const char* krLoadDetail() noexcept;

constexpr DWORD TH32CS_SNAPMODULE = 0x8;
constexpr std::size_t MAX_MODULE_NAME32 = 255;
constexpr std::size_t krModulePathSize = 4096;

struct MODULEENTRY32
{
    DWORD dwSize;
    unsigned char* modBaseAddr;
    DWORD modBaseSize;
    char szModule[MAX_MODULE_NAME32 + 1];
    char szExePath[krModulePathSize];
};

/// Only of the modules of this process, in the order in which they were loaded.
HANDLE CreateToolhelp32Snapshot(DWORD flags, DWORD process) noexcept;
BOOL Module32First(HANDLE snapshot, MODULEENTRY32* entry) noexcept;
BOOL Module32Next(HANDLE snapshot, MODULEENTRY32* entry) noexcept;

constexpr DWORD ERROR_BAD_LENGTH = 24;

// Processes (posix/process.cpp)

DWORD GetCurrentProcessId() noexcept;
HANDLE GetCurrentProcess() noexcept;

/// How many handles of this layer the calling process holds.
BOOL GetProcessHandleCount(HANDLE process, DWORD* count) noexcept;

/// The kernel's number of the calling thread.
DWORD GetCurrentThreadId() noexcept;

// Files as memory (posix/mapping.cpp). A view that a forked process inherits is a copy of its own
// from then on: what it writes there does not reach the file.

constexpr DWORD PAGE_READWRITE = 0x04;
constexpr DWORD FILE_MAP_WRITE = 0x0002;

/// Only for files that are read and written, and without a name. Grows the file to that size if it
/// is smaller, with the room on the disk for it: so writing into a view cannot fail for want of it.
/// Null with the last error set if that fails.
HANDLE CreateFileMappingA(HANDLE file, SECURITY_ATTRIBUTES* security, DWORD protection,
                          DWORD sizeHigh, DWORD sizeLow, const char* name) noexcept;

/// A view stays when the handles of its mapping and file are closed. The offset is a multiple of
/// 65536.
void* MapViewOfFile(HANDLE mapping, DWORD access, DWORD offsetHigh, DWORD offsetLow,
                    std::size_t size) noexcept;
BOOL UnmapViewOfFile(const void* address) noexcept;

/// What the runtime's `assert` does on a failure: prints where and what, and aborts.
void _assert(const char* text, const char* file, unsigned line);

/// Has `before` called in the process that forks, then `inParent` or `inChild`. Once in a process.
void krOnFork(void (*before)(), void (*inParent)(), void (*inChild)()) noexcept;

// Child processes (posix/childProcess.cpp); they are started with `krStartProcess` (anyProcess.h)

constexpr DWORD ERROR_BROKEN_PIPE = 109;
constexpr DWORD ERROR_NO_SYSTEM_RESOURCES = 1450;

constexpr DWORD STILL_ACTIVE = 259;

/// A program that a signal has ended has the code of what ends one so on the system that the calls
/// come from; there are a few of this layer's own (exitCodes.h).
BOOL GetExitCodeProcess(HANDLE process, DWORD* code) noexcept;

/// What this process was started with, in the form of `krSplitCommandLine`.
const char* GetCommandLineA() noexcept;
// Wide texts (posix/wideText.cpp): UTF-16, to and from UTF-8 only. What is malformed is refused,
// whatever the flags; lengths do not count a terminator and are above 0.

using WCHAR = char16_t;

constexpr UINT CP_UTF8 = 65001;
constexpr DWORD MB_ERR_INVALID_CHARS = 0x8;
constexpr DWORD WC_ERR_INVALID_CHARS = 0x80;
constexpr DWORD ERROR_NO_UNICODE_TRANSLATION = 1113;

int MultiByteToWideChar(UINT page, DWORD flags, const char* text, int length, WCHAR* wide,
                        int size) noexcept;
int WideCharToMultiByte(UINT page, DWORD flags, const WCHAR* wide, int length, char* text, int size,
                        const char* substitute, BOOL* substituted) noexcept;

// Registry (posix/registry.cpp): the user's and the machine's root, kept in files
// (posix/registryFolder.h). The letters A to Z are the same in both cases.

using BYTE = unsigned char;
using HKEY = HANDLE;
using REGSAM = DWORD;
using LSTATUS = LONG;

constexpr DWORD ERROR_MORE_DATA = 234;
constexpr DWORD ERROR_NO_MORE_ITEMS = 259;
constexpr DWORD ERROR_REGISTRY_CORRUPT = 1015;
constexpr DWORD ERROR_KEY_DELETED = 1018;

extern char krUserRoot; // only their addresses matter
extern char krMachineRoot;
#define HKEY_CURRENT_USER (static_cast<HKEY>(&krUserRoot))
#define HKEY_LOCAL_MACHINE (static_cast<HKEY>(&krMachineRoot))

constexpr DWORD REG_SZ = 1;
constexpr DWORD REG_EXPAND_SZ = 2;
constexpr DWORD REG_BINARY = 3;
constexpr DWORD REG_DWORD = 4;
constexpr DWORD REG_MULTI_SZ = 7;
constexpr DWORD REG_QWORD = 11;

constexpr REGSAM KEY_SET_VALUE = 0x2; ///< the only right that is asked for
constexpr REGSAM KEY_READ = 0x20019;
constexpr REGSAM KEY_WRITE = 0x20006;

constexpr DWORD REG_CREATED_NEW_KEY = 1;
constexpr DWORD REG_OPENED_EXISTING_KEY = 2;

LSTATUS RegOpenKeyExW(HKEY key, const WCHAR* path, DWORD options, REGSAM access,
                      HKEY* result) noexcept;
LSTATUS RegCreateKeyExW(HKEY key, const WCHAR* path, DWORD reserved, WCHAR* keyClass, DWORD options,
                        REGSAM access, SECURITY_ATTRIBUTES* security, HKEY* result,
                        DWORD* disposition) noexcept;
LSTATUS RegCloseKey(HKEY key) noexcept;

/// Only below the key, not what is in the key itself.
LSTATUS RegDeleteTreeW(HKEY key, const WCHAR* path) noexcept;

/// What the index 0 finds is what the others count.
LSTATUS RegEnumKeyExW(HKEY key, DWORD index, WCHAR* name, DWORD* size, DWORD* reserved,
                      WCHAR* keyClass, DWORD* classSize, FILETIME* written) noexcept;
LSTATUS RegEnumValueW(HKEY key, DWORD index, WCHAR* name, DWORD* size, DWORD* reserved, DWORD* type,
                      BYTE* data, DWORD* dataSize) noexcept;
/// The values of a key that has been opened, as all calls for values.
LSTATUS RegQueryValueExW(HKEY key, const WCHAR* name, DWORD* reserved, DWORD* type, BYTE* data,
                         DWORD* size) noexcept;
LSTATUS RegSetValueExW(HKEY key, const WCHAR* name, DWORD reserved, DWORD type, const BYTE* data,
                       DWORD size) noexcept;
LSTATUS RegDeleteValueW(HKEY key, const WCHAR* name) noexcept;

/// For the thread's last call that found the registry damaged: in which file and line.
const char* krRegistryDetail() noexcept;

#endif

// The end of a thread, on every system

/// Has `action` called when the calling thread ends, once, whoever asks how often; 0 if there is no
/// memory for that. For at most four actions.
BOOL krAtThreadEnd(void (*action)() noexcept) noexcept;

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

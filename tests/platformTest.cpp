#include <platform/platform.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <thread>

// The calls that the library is written to, held against one table of results and error codes: the
// system's own on Windows, and those that stand for them elsewhere.

namespace
{

namespace fs = std::filesystem;

constexpr DWORD readWrite = GENERIC_READ | GENERIC_WRITE;
constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

std::string folder;

std::string in(const std::string& name)
{
    return (fs::path(folder) / name).string();
}

HANDLE open(const std::string& path, DWORD access, DWORD share, DWORD disposition,
            DWORD attributes = FILE_ATTRIBUTE_NORMAL)
{
    return CreateFileA(path.c_str(), access, share, nullptr, disposition, attributes, nullptr);
}

/// Closes the file of a row; the last error stays that of the call.
bool opened(HANDLE file)
{
    const DWORD error = GetLastError();
    if (file != INVALID_HANDLE_VALUE)
        CloseHandle(file);
    SetLastError(error);
    return file != INVALID_HANDLE_VALUE;
}

bool opens(const char* name, DWORD access, DWORD share, DWORD disposition)
{
    return opened(open(in(name), access, share, disposition));
}

bool moves(const char* from, const char* to, DWORD flags = 0)
{
    return MoveFileExA(in(from).c_str(), in(to).c_str(), flags) != 0;
}

bool writes(HANDLE file, const std::string& text)
{
    DWORD written = 0;
    return WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr) != 0 &&
           written == text.size();
}

bool seeks(HANDLE file, std::int64_t distance, DWORD method, std::int64_t expected = 0)
{
    LARGE_INTEGER by = {};
    LARGE_INTEGER position = {};
    by.QuadPart = distance;
    return SetFilePointerEx(file, by, &position, method) != 0 && position.QuadPart == expected;
}

bool hasSize(HANDLE file, std::int64_t expected)
{
    LARGE_INTEGER size = {};
    return GetFileSizeEx(file, &size) != 0 && size.QuadPart == expected;
}

bool locks(HANDLE file, DWORD flags, DWORD from, DWORD size)
{
    OVERLAPPED range = {};
    range.Offset = from;
    return LockFileEx(file, flags | LOCKFILE_FAIL_IMMEDIATELY, 0, size, 0, &range) != 0;
}

bool unlocks(HANDLE file, DWORD from, DWORD size)
{
    OVERLAPPED range = {};
    range.Offset = from;
    return UnlockFileEx(file, 0, size, 0, &range) != 0;
}

struct Described
{
    bool described;
    BY_HANDLE_FILE_INFORMATION information;

    explicit Described(HANDLE file)
        : information()
    {
        described = GetFileInformationByHandle(file, &information) != 0;
    }
    bool isSameFile(const Described& other) const
    {
        return described && other.described &&
               information.nFileIndexLow == other.information.nFileIndexLow &&
               information.nFileIndexHigh == other.information.nFileIndexHigh &&
               information.dwVolumeSerialNumber == other.information.dwVolumeSerialNumber;
    }
};

HANDLE first = INVALID_HANDLE_VALUE;  ///< held over some rows
HANDLE second = INVALID_HANDLE_VALUE; ///< of the same file, or only for reading or appending

bool hold(HANDLE& handle, const char* name, DWORD access, DWORD share)
{
    handle = open(in(name), access, share, OPEN_EXISTING);
    return handle != INVALID_HANDLE_VALUE;
}

bool release(HANDLE& handle)
{
    const HANDLE closed = handle;
    handle = INVALID_HANDLE_VALUE;
    return CloseHandle(closed) != 0;
}

bool create(BOOL isManual, BOOL isSet)
{
    first = CreateEventA(nullptr, isManual, isSet, nullptr);
    return first != nullptr;
}

bool waits(DWORD milliseconds = 0)
{
    return WaitForSingleObject(first, milliseconds) == WAIT_OBJECT_0;
}

constexpr DWORD hang = 60'000; // milliseconds

MMRESULT startTimer(UINT delay, UINT flags)
{
    return timeSetEvent(delay, 1, reinterpret_cast<LPTIMECALLBACK>(first), 0, flags);
}

/// A thread waits on the event until it is given away.
bool releasesWho(bool (*gives)())
{
    std::atomic<bool> isReleased{false};
    std::thread waiter([&] { isReleased = waits(hang); });
    while (!isReleased)
    {
        Sleep(1);
        if (!gives())
            break;
    }
    waiter.join();
    return isReleased;
}

DWORD slot = TLS_OUT_OF_INDEXES;

bool loads(const std::string& path)
{
    return LoadLibraryA(path.c_str()) != nullptr;
}

/// How many modules there are, up to the error that ends the list.
int countModules(DWORD entrySize)
{
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPMODULE, 0);
    MODULEENTRY32 entry;
    entry.dwSize = entrySize;
    int count = 0;
    for (BOOL found = Module32First(snapshot, &entry); found != 0;
         found = Module32Next(snapshot, &entry))
        ++count;
    const DWORD error = GetLastError();
    CloseHandle(snapshot);
    SetLastError(error);
    return count;
}

bool deletesOnClosing(const char* name)
{
    return opened(
        open(in(name), GENERIC_READ | DELETE, 0, OPEN_EXISTING, FILE_FLAG_DELETE_ON_CLOSE));
}

DWORD attributesOf(const char* name)
{
    return GetFileAttributesA(in(name).c_str());
}

bool has(const char* name, DWORD attribute)
{
    const DWORD attributes = attributesOf(name);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & attribute) != 0;
}

bool deletes(const char* name)
{
    return DeleteFileA(in(name).c_str()) != 0;
}

bool removes(const char* name)
{
    return RemoveDirectoryA(in(name).c_str()) != 0;
}

bool reads(HANDLE file, DWORD size, const std::string& expected)
{
    char buffer[16];
    DWORD count = 0;
    return ReadFile(file, buffer, size, &count, nullptr) != 0 &&
           std::string(buffer, count) == expected;
}

/// What a search for `pattern` finds but for "." and "..", in the order of the names.
bool finds(const char* pattern, const std::string& expected)
{
    WIN32_FIND_DATAA data = {};
    const HANDLE search = FindFirstFileExA(in(pattern).c_str(), FindExInfoBasic, &data,
                                           FindExSearchNameMatch, nullptr, 0);
    if (search == INVALID_HANDLE_VALUE)
        return false;
    std::set<std::string> found;
    do
        if (data.cFileName[0] != '.')
            found.insert(std::string(data.cFileName) +
                         ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? "/" : ""));
    while (FindNextFileA(search, &data) != 0);
    const DWORD error = GetLastError();
    FindClose(search);
    SetLastError(error);
    std::string all;
    for (const std::string& name : found)
        all += name + ' ';
    return all == expected;
}

constexpr DWORD unchecked = 0xFFFF;

struct Row
{
    const char* call;
    bool (*performs)();
    bool expected;
    DWORD error = unchecked; ///< the thread's last error after the call
};

/// Each row stands on what those before it have left.
void check(const Row& row)
{
    SetLastError(unchecked);
    const bool performed = row.performs();
    const DWORD error = GetLastError();
    EXPECT_EQ(row.expected, performed) << row.call << ", error " << error;
    EXPECT_EQ(row.error != unchecked ? row.error : error, error) << row.call;
}

// A row to a line.
// clang-format off
const Row rows[] = {
    // opening
    {"missing file", [] { return opens("a", GENERIC_READ, shareAll, OPEN_EXISTING); }, false, ERROR_FILE_NOT_FOUND},
    {"missing folder", [] { return opens("b/a", GENERIC_READ, shareAll, OPEN_EXISTING); }, false, ERROR_PATH_NOT_FOUND},
    {"empty path", [] { return opened(open("", GENERIC_READ, shareAll, OPEN_EXISTING)); }, false, ERROR_PATH_NOT_FOUND},
    {"missing drive", [] { return opened(open("Q:\\b\\a", GENERIC_READ, shareAll, OPEN_EXISTING)); }, false, ERROR_PATH_NOT_FOUND},
    {"forbidden character", [] { return opens("a?", GENERIC_READ, shareAll, OPEN_EXISTING); }, false, ERROR_INVALID_NAME},
    {"unknown disposition", [] { return opens("a", readWrite, shareAll, 9); }, false, ERROR_INVALID_PARAMETER},
    {"folder", [] { return opened(open(folder, GENERIC_READ, shareAll, OPEN_EXISTING)); }, false, ERROR_ACCESS_DENIED},
    {"create new", [] { return opens("a", readWrite, 0, CREATE_NEW); }, true},
    {"create new again", [] { return opens("a", readWrite, 0, CREATE_NEW); }, false, ERROR_FILE_EXISTS},
    {"create always", [] { return opens("a", readWrite, 0, CREATE_ALWAYS); }, true, ERROR_ALREADY_EXISTS},
    {"open always", [] { return opens("a", readWrite, 0, OPEN_ALWAYS); }, true, ERROR_ALREADY_EXISTS},
    {"open always a new one", [] { return opens("c", readWrite, 0, OPEN_ALWAYS); }, true, ERROR_SUCCESS},
    {"open", [] { return opens("a", GENERIC_READ, 0, OPEN_EXISTING); }, true},
    {"create read-only", [] { return opened(open(in("r"), GENERIC_WRITE, 0, CREATE_NEW, FILE_ATTRIBUTE_READONLY)); }, true},
    {"which is kept", [] { hold(first, "r", GENERIC_READ, 0); const Described d(first); return release(first) && (d.information.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0; }, true},
    // sharing
    {"hold for oneself", [] { return hold(first, "a", GENERIC_READ, 0); }, true},
    {"read what is held", [] { return opens("a", GENERIC_READ, shareAll, OPEN_EXISTING); }, false, ERROR_SHARING_VIOLATION},
    {"ask about what is held", [] { return opens("a", 0, 0, OPEN_EXISTING); }, true},
    {"move what is held", [] { return moves("a", "b"); }, false, ERROR_SHARING_VIOLATION},
    {"release", [] { return release(first); }, true},
    {"write, let others read", [] { return hold(first, "a", GENERIC_WRITE, FILE_SHARE_READ); }, true},
    {"read beside it", [] { return opens("a", GENERIC_READ, shareAll, OPEN_EXISTING); }, true},
    {"read, deny writing", [] { return opens("a", GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING); }, false, ERROR_SHARING_VIOLATION},
    {"write beside it", [] { return opens("a", GENERIC_WRITE, shareAll, OPEN_EXISTING); }, false, ERROR_SHARING_VIOLATION},
    {"release it", [] { return release(first); }, true},
    {"share all", [] { return hold(first, "a", readWrite, shareAll); }, true},
    {"move what is shared", [] { return moves("a", "b"); }, true},
    {"move back", [] { return moves("b", "a"); }, true},
    {"move over what is open", [] { return moves("c", "a", MOVEFILE_REPLACE_EXISTING); }, false, ERROR_ACCESS_DENIED},
    {"release the shared", [] { return release(first); }, true},
    // contents, locks
    {"open", [] { return hold(first, "a", readWrite, shareAll); }, true},
    {"open again", [] { return hold(second, "a", GENERIC_READ, shareAll); }, true},
    {"write", [] { return writes(first, "123456"); }, true},
    {"size", [] { return hasSize(second, 6); }, true},
    {"seek from the start", [] { return seeks(first, 4, FILE_BEGIN, 4); }, true},
    {"seek from the end", [] { return seeks(first, -3, FILE_END, 3); }, true},
    {"seek before the start", [] { return seeks(first, -1, FILE_BEGIN); }, false, ERROR_NEGATIVE_SEEK},
    {"unknown origin", [] { return seeks(first, 0, 3); }, false, ERROR_INVALID_PARAMETER},
    {"end here", [] { return SetEndOfFile(first) != 0 && hasSize(first, 3); }, true},
    {"flush", [] { return FlushFileBuffers(first) != 0; }, true},
    {"write without access", [] { return writes(second, "x"); }, false, ERROR_ACCESS_DENIED},
    {"cut without access", [] { return SetEndOfFile(second) != 0; }, false},
    {"one file", [] { return Described(first).isSameFile(Described(second)); }, true},
    {"its description", [] { const Described d(first); return d.information.nFileSizeLow == 3 && d.information.nFileSizeHigh == 0 && d.information.nNumberOfLinks == 1; }, true},
    {"not another's", [] { HANDLE other = nullptr; hold(other, "c", 0, shareAll); const bool same = Described(other).isSameFile(Described(first)); release(other); return same; }, false},
    {"own a range", [] { return locks(first, LOCKFILE_EXCLUSIVE_LOCK, 10, 5); }, true},
    {"share what is owned", [] { return locks(second, 0, 14, 1); }, false, ERROR_LOCK_VIOLATION},
    {"share behind it", [] { return locks(second, 0, 15, 5); }, true},
    {"share it, too", [] { return locks(first, 0, 15, 5); }, true},
    {"let go", [] { return unlocks(first, 10, 5) && unlocks(first, 15, 5); }, true},
    {"share what was owned", [] { return locks(second, 0, 10, 5); }, true},
    {"own what is shared", [] { return locks(first, LOCKFILE_EXCLUSIVE_LOCK, 0, 16); }, false, ERROR_LOCK_VIOLATION},
    {"locks end with the handle", [] { return release(second) && locks(first, LOCKFILE_EXCLUSIVE_LOCK, 0, 16); }, true},
    {"open to append", [] { return hold(second, "c", FILE_APPEND_DATA, shareAll); }, true},
    {"append", [] { return writes(second, "1") && seeks(second, 0, FILE_BEGIN) && writes(second, "23"); }, true},
    {"appended", [] { return hasSize(second, 3); }, true},
    {"close", [] { return release(first) && release(second); }, true},
    {"no handle", [] { return hasSize(INVALID_HANDLE_VALUE, 0); }, false, ERROR_INVALID_HANDLE},
    {"close none", [] { return CloseHandle(nullptr) != 0; }, false, ERROR_INVALID_HANDLE},
    // names
    {"new folder", [] { return CreateDirectoryA(in("d").c_str(), nullptr) != 0; }, true},
    {"existing folder", [] { return CreateDirectoryA(in("d").c_str(), nullptr) != 0; }, false, ERROR_ALREADY_EXISTS},
    {"folder in none", [] { return CreateDirectoryA(in("x/d").c_str(), nullptr) != 0; }, false, ERROR_PATH_NOT_FOUND},
    {"move a missing file", [] { return moves("x", "y"); }, false, ERROR_FILE_NOT_FOUND},
    {"move over another", [] { return moves("a", "c"); }, false, ERROR_ALREADY_EXISTS},
    {"move over a folder", [] { return moves("a", "d", MOVEFILE_REPLACE_EXISTING); }, false, ERROR_ACCESS_DENIED},
    {"move into none", [] { return moves("a", "x/a"); }, false, ERROR_PATH_NOT_FOUND},
    {"replace", [] { return moves("a", "c", MOVEFILE_REPLACE_EXISTING) && !fs::exists(in("a")); }, true},
    {"both separators", [] { return opens("d\\../c", GENERIC_READ, shareAll, OPEN_EXISTING); }, true},
};

const Row events[] = {
    {"automatic", [] { return create(0, 0); }, true},
    {"not set", [] { return waits(); }, false},
    {"set", [] { return SetEvent(first) != 0 && SetEvent(first) != 0; }, true},
    {"taken", [] { return waits(); }, true},
    {"taken once", [] { return waits(); }, false},
    {"set and reset", [] { return SetEvent(first) != 0 && ResetEvent(first) != 0; }, true},
    {"reset", [] { return waits(10); }, false},
    {"pulse nobody", [] { return PulseEvent(first) != 0 && waits(); }, false},
    {"pulse who waits", [] { return releasesWho([] { return PulseEvent(first) != 0; }); }, true},
    {"set for who waits", [] { return releasesWho([] { return SetEvent(first) != 0; }); }, true},
    {"a timer sets it", [] { return ResetEvent(first) != 0 && startTimer(5, TIME_ONESHOT | TIME_CALLBACK_EVENT_SET) != 0 && waits(hang); }, true},
    {"once", [] { return waits(20); }, false},
    {"close", [] { return release(first); }, true},
    {"manual and set", [] { return create(1, 1); }, true},
    {"stays set", [] { return waits() && waits(); }, true},
    {"reset it", [] { return ResetEvent(first) != 0 && waits(); }, false},
    {"set and reset while one waits", [] { return releasesWho([] { return SetEvent(first) != 0 && ResetEvent(first) != 0; }); }, true},
    {"a timer pulses it",
     []
     {
         const MMRESULT timer = startTimer(5, TIME_PERIODIC | TIME_CALLBACK_EVENT_PULSE);
         return waits(hang) && waits(hang) && waits(hang) &&
                timeKillEvent(timer) == TIMERR_NOERROR && timeKillEvent(timer) != TIMERR_NOERROR;
     },
     true},
    {"killed", [] { return waits(30); }, false},
    {"no delay", [] { return startTimer(0, TIME_PERIODIC | TIME_CALLBACK_EVENT_PULSE) != 0; }, false},
    {"close it", [] { return release(first); }, true},
    {"wait on nothing", [] { return WaitForSingleObject(nullptr, 0) != WAIT_FAILED; }, false,
     ERROR_INVALID_HANDLE},
    {"no period", [] { return timeBeginPeriod(0) == TIMERR_NOERROR; }, false},
    {"least period", [] { return timeBeginPeriod(1) == TIMERR_NOERROR && timeEndPeriod(1) == TIMERR_NOERROR; }, true},
};

const Row slotsAndModules[] = {
    {"slot", [] { slot = TlsAlloc(); return slot != TLS_OUT_OF_INDEXES; }, true},
    {"empty", [] { return TlsGetValue(slot) != nullptr; }, false, ERROR_SUCCESS},
    {"fill", [] { return TlsSetValue(slot, &slot) != 0 && TlsGetValue(slot) == &slot; }, true},
    {"each thread its own", [] { bool isEmpty = false; std::thread([&] { isEmpty = TlsGetValue(slot) == nullptr; }).join(); return isEmpty; }, true},
    {"free", [] { return TlsFree(slot) != 0; }, true},
    {"missing library", [] { return loads("no-such-library"); }, false, ERROR_MOD_NOT_FOUND},
    {"missing file", [] { return loads(in("x.dll")); }, false, ERROR_MOD_NOT_FOUND},
    {"no library", [] { std::ofstream(in("text.dll")) << "text"; return loads(in("text.dll")); }, false, ERROR_BAD_EXE_FORMAT},
    {"modules", [] { return countModules(sizeof(MODULEENTRY32)) > 1; }, true, ERROR_NO_MORE_FILES},
    {"no entry", [] { return countModules(0) != 0; }, false, ERROR_INSUFFICIENT_BUFFER},
};

const Row files[] = {
    {"a file's attributes", [] { return has("c", FILE_ATTRIBUTE_ARCHIVE); }, true},
    {"a folder's attributes", [] { return has("d", FILE_ATTRIBUTE_DIRECTORY); }, true},
    {"a missing one's", [] { return has("x", ~0U); }, false, ERROR_FILE_NOT_FOUND},
    {"in a missing folder", [] { return has("x/y", ~0U); }, false, ERROR_PATH_NOT_FOUND},
    {"below a file", [] { return has("c/y", ~0U); }, false, ERROR_PATH_NOT_FOUND},
    {"read-only", [] { return SetFileAttributesA(in("c").c_str(), FILE_ATTRIBUTE_READONLY) != 0; }, true},
    {"is read-only", [] { return has("c", FILE_ATTRIBUTE_READONLY); }, true},
    {"delete it", [] { return deletes("c"); }, false, ERROR_ACCESS_DENIED},
    {"a new one", [] { return opens("n", readWrite, 0, CREATE_NEW); }, true},
    {"move it", [] { return moves("c", "m") && moves("m", "c"); }, true},
    {"not read-only", [] { return SetFileAttributesA(in("c").c_str(), FILE_ATTRIBUTE_NORMAL) != 0; }, true},
    {"write and read",
     []
     {
         return hold(first, "c", GENERIC_WRITE, shareAll) && writes(first, "123") &&
                hold(second, "c", GENERIC_READ, shareAll) && reads(second, 2, "12");
     },
     true},
    {"read the rest", [] { return reads(second, 9, "3"); }, true},
    {"read at the end", [] { return reads(second, 9, ""); }, true},
    {"read without access", [] { return reads(first, 9, ""); }, false, ERROR_ACCESS_DENIED},
    {"size", [] { return GetFileSize(first, nullptr) == 3; }, true},
    {"move the pointer", [] { return SetFilePointer(second, -2, nullptr, FILE_END) == 1; }, true},
    {"before the start", [] { return SetFilePointer(second, -4, nullptr, FILE_END) != INVALID_SET_FILE_POINTER; }, false, ERROR_NEGATIVE_SEEK},
    {"from nowhere", [] { return SetFilePointer(second, 0, nullptr, 7) != INVALID_SET_FILE_POINTER; }, false, ERROR_INVALID_PARAMETER},
    {"far behind the end", [] { LONG high = 1; return SetFilePointer(second, 5, &high, FILE_BEGIN) == 5 && high == 1; }, true},
    {"read there", [] { return reads(second, 1, ""); }, true},
    {"set and get the time",
     []
     {
         const FILETIME set = {0x12345678, 0x01C00000};
         FILETIME got = {};
         return SetFileTime(first, nullptr, nullptr, &set) != 0 &&
                GetFileTime(first, nullptr, nullptr, &got) != 0 &&
                got.dwHighDateTime == set.dwHighDateTime && got.dwLowDateTime == set.dwLowDateTime;
     },
     true},
    {"describe",
     []
     {
         WIN32_FILE_ATTRIBUTE_DATA data = {};
         return GetFileAttributesExA(in("c").c_str(), GetFileExInfoStandard, &data) != 0 &&
                data.nFileSizeLow == 3 && data.ftLastWriteTime.dwHighDateTime == 0x01C00000;
     },
     true},
    {"delete what may be", [] { return release(first) && release(second) && deletes("n"); }, true},
    {"hold", [] { return hold(first, "c", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE); }, true},
    {"delete what is held", [] { return deletes("c"); }, false, ERROR_SHARING_VIOLATION},
    {"move over what is held",
     []
     { return opens("n", readWrite, 0, CREATE_NEW) && moves("n", "c", MOVEFILE_REPLACE_EXISTING); },
     false, ERROR_ACCESS_DENIED},
    {"let go", [] { return release(first) && deletes("n"); }, true},
    {"delete a missing one", [] { return deletes("n"); }, false, ERROR_FILE_NOT_FOUND},
    {"delete a folder", [] { return deletes("d"); }, false, ERROR_ACCESS_DENIED},
    {"delete on closing what is open", [] { return opens("n", readWrite, 0, CREATE_NEW) && hold(first, "n", GENERIC_READ, shareAll) && deletesOnClosing("n"); }, false, ERROR_SHARING_VIOLATION},
    {"close, and once more", [] { const HANDLE stale = first; return GetFileType(first) == FILE_TYPE_DISK && release(first) && CloseHandle(stale) != 0; }, false, ERROR_INVALID_HANDLE},
    {"delete on closing", [] { return deletesOnClosing("n") && has("n", ~0U); }, false, ERROR_FILE_NOT_FOUND},
};

const Row folders[] = {
    {"find nothing", [] { return finds("d\\*", ""); }, true, ERROR_NO_MORE_FILES},
    {"find",
     []
     {
         return opens("d/f", readWrite, 0, CREATE_NEW) &&
                CreateDirectoryA(in("d/e").c_str(), nullptr) != 0 && finds("d\\*", "e/ f ");
     },
     true, ERROR_NO_MORE_FILES},
    {"find in none", [] { return finds("x\\*", ""); }, false, ERROR_PATH_NOT_FOUND},
    {"find in a file", [] { return finds("c\\*", ""); }, false},
    {"remove a full one", [] { return removes("d"); }, false, ERROR_DIR_NOT_EMPTY},
    {"remove a file", [] { return removes("c"); }, false, ERROR_DIRECTORY},
    {"remove none", [] { return removes("x"); }, false, ERROR_FILE_NOT_FOUND},
    {"remove", [] { return removes("d/e") && deletes("d/f") && removes("d"); }, true},
};
// clang-format on

TEST(Platform, FilesAsTheTableSays)
{
    folder = (fs::temp_directory_path() / ("kr-platform-" + std::to_string(GetCurrentProcessId())))
                 .string();
    fs::create_directory(folder);
    for (const Row& row : rows)
        check(row);
    for (const Row& row : slotsAndModules)
        check(row);
    for (const Row& row : files)
        check(row);
    for (const Row& row : folders)
        check(row);
    fs::permissions(in("r"), fs::perms::owner_all);
    fs::remove_all(folder);
}

TEST(Platform, EventsAndTimersAsTheTableSays)
{
    for (const Row& row : events)
        check(row);
}

TEST(Platform, ErrorsBelongToTheThreadAndHaveTexts)
{
    std::atomic<int> step{0};
    std::thread other(
        [&]
        {
            while (step != 1)
                continue;
            SetLastError(6);
            step = 2;
        });
    SetLastError(5);
    step = 1;
    while (step != 2)
        continue;
    EXPECT_EQ(5u, GetLastError());
    other.join();

    constexpr DWORD flags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    char text[512];
    const auto format = [&](DWORD code, DWORD size)
    { return FormatMessageA(flags, nullptr, code, 0, text, size, nullptr); };
    for (const DWORD code : {ERROR_SUCCESS, ERROR_FILE_NOT_FOUND, ERROR_NOT_ENOUGH_MEMORY,
                             ERROR_SHARING_VIOLATION, ERROR_LOCK_VIOLATION, ERROR_DISK_FULL})
    {
        const DWORD length = format(static_cast<DWORD>(code), sizeof text);
        ASSERT_GT(length, 2u) << code;
        EXPECT_EQ(std::strlen(text), length);
        EXPECT_STREQ("\r\n", text + length - 2);
    }
    EXPECT_EQ(0u, format(0x2FFFFFFF, sizeof text));
    EXPECT_EQ(static_cast<DWORD>(ERROR_MR_MID_NOT_FOUND), GetLastError());
    EXPECT_EQ(0u, format(ERROR_FILE_NOT_FOUND, 4));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER), GetLastError());
}

/// The full path and the last element, or the error.
std::string fullPath(const char* path)
{
    char buffer[300];
    char* last = nullptr;
    const DWORD length = GetFullPathNameA(path, sizeof buffer, buffer, &last);
    if (length == 0)
        return "none";
    return std::string(buffer, length) + " " + (last != nullptr ? last : "-");
}

TEST(Platform, FullPathsAreWhatTheSystemMakesOfThem)
{
    struct
    {
        const char* path;
        const char* expected;
    } const cases[] = {
        {"", "none"},
        {"C:\\a\\b", "C:\\a\\b b"},
        {"C:/a/b/", "C:\\a\\b\\ -"},
        {"c:\\a\\.\\b\\..\\d", "c:\\a\\d d"},
        {"C:\\..\\..\\a", "C:\\a a"},
        {"C:\\a\\\\b//c", "C:\\a\\b\\c c"},
        {"C:\\a\\..", "C:\\ -"},
        {"C:\\", "C:\\ -"},
        {"C:\\a\\file.", "C:\\a\\file file"},
        {"C:\\a\\file. . ", "C:\\a\\file file"},
        {"C:\\a.\\file", "C:\\a\\file file"},
        {"C:\\a\\b\\.", "C:\\a\\b b"},
        {"D:\\a", "D:\\a a"},
        {"\\\\server\\share\\a\\..\\b", "\\\\server\\share\\b b"},
        {"\\\\server\\share\\..\\..\\b", "\\\\server\\share\\b b"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(c.expected, fullPath(c.path)) << c.path;
    // From the current directory, which is on some drive.
    const std::string here = fullPath(".").substr(0, fullPath(".").find(' '));
    const std::string drive = here.substr(0, 2);
    EXPECT_EQ(here + "\\a\\b b", fullPath("a/b"));
    EXPECT_EQ(drive + "\\a a", fullPath("\\a"));
    EXPECT_EQ(drive + "\\a a", fullPath("/a"));
    EXPECT_EQ(here + "\\a a", fullPath((drive + "a").c_str()));
    char buffer[4];
    EXPECT_EQ(7u, GetFullPathNameA("C:\\a\\b", 4, buffer, nullptr)); // the size that is needed
    EXPECT_EQ(_getdrive() + 64, drive[0]);
}

TEST(Platform, TimesGoThroughTheTimeZoneAndBack)
{
    for (const WORD month : {WORD{1}, WORD{7}})
    {
        const SYSTEMTIME universal = {2024, month, 0, 15, 12, 30, 0, 0};
        SYSTEMTIME local = {};
        SYSTEMTIME back = {};
        ASSERT_NE(0, SystemTimeToTzSpecificLocalTime(nullptr, &universal, &local));
        ASSERT_NE(0, TzSpecificLocalTimeToSystemTime(nullptr, &local, &back));
        EXPECT_EQ(15, back.wDay);
        EXPECT_EQ(12, back.wHour);
        EXPECT_EQ(30, back.wMinute);
    }
    const FILETIME fileTime = {0xD53E8000, 0x019DB1DE}; // 1970-01-01
    SYSTEMTIME time = {};
    ASSERT_NE(0, FileTimeToSystemTime(&fileTime, &time));
    EXPECT_EQ(1970, time.wYear);
    EXPECT_EQ(4, time.wDayOfWeek);
    const FILETIME none = {0, 0x80000000};
    EXPECT_EQ(0, FileTimeToSystemTime(&none, &time));
    EXPECT_EQ(static_cast<DWORD>(ERROR_INVALID_PARAMETER), GetLastError());
}

TEST(Platform, EnvironmentIsSetAndRemoved)
{
    const auto value = [] { return std::getenv("KR_PLATFORM_TEST"); };
    EXPECT_EQ(0, _putenv("KR_PLATFORM_TEST=a=b"));
    EXPECT_STREQ("a=b", value());
    bool listed = false;
    for (char** entry = _environ; *entry != nullptr; ++entry)
        listed = listed || std::strcmp(*entry, "KR_PLATFORM_TEST=a=b") == 0;
    EXPECT_TRUE(listed);
    EXPECT_EQ(0, _putenv("KR_PLATFORM_TEST="));
    EXPECT_EQ(nullptr, value());
    for (const char* refused : {"KR_PLATFORM_TEST", "=a"})
        EXPECT_EQ(-1, _putenv(refused)) << refused;
}

TEST(Platform, ClocksRunAndThreadsHaveNumbers)
{
    LARGE_INTEGER frequency = {};
    LARGE_INTEGER again = {};
    EXPECT_NE(0, QueryPerformanceFrequency(&frequency));
    EXPECT_NE(0, QueryPerformanceFrequency(&again));
    EXPECT_GT(frequency.QuadPart, 0);
    EXPECT_EQ(frequency.QuadPart, again.QuadPart);

    using namespace std::chrono;
    const auto now = []
    { return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count(); };
    __timeb64 time = {};
    const auto before = now();
    _ftime64(&time);
    const std::int64_t between = static_cast<std::int64_t>(time.time) * 1000 + time.millitm;
    EXPECT_LE(before, between + 1);
    EXPECT_LE(between, now() + 1);

    const DWORD here = GetCurrentThreadId();
    std::thread([here] { EXPECT_NE(here, GetCurrentThreadId()); }).join();
    EXPECT_EQ(here, GetCurrentThreadId());
}

} // namespace

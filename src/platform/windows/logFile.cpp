#include <platform/logFile.h>

#include <aclapi.h>
#include <atomic>
#include <io.h>

namespace
{

HANDLE handleOf(std::intptr_t handle)
{
    return reinterpret_cast<HANDLE>(handle);
}

bool fail(DWORD code)
{
    SetLastError(code);
    return false;
}

OVERLAPPED offsetOf(std::int64_t at)
{
    OVERLAPPED range = {};
    range.Offset = static_cast<DWORD>(at);
    range.OffsetHigh = static_cast<DWORD>(static_cast<std::uint64_t>(at) >> 32);
    return range;
}

/// Opens the file or makes it, never what a link at the path's end leads to.
HANDLE openHere(const char* path, DWORD share)
{
    constexpr DWORD access = GENERIC_READ | GENERIC_WRITE;
    constexpr DWORD nameSurrogate = 0x20000000; // of a reparse tag: it stands for another name
    const HANDLE file = CreateFileA(path, access, share, nullptr, OPEN_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    FILE_ATTRIBUTE_TAG_INFO tag = {};
    if (file == INVALID_HANDLE_VALUE ||
        GetFileInformationByHandleEx(file, FileAttributeTagInfo, &tag, sizeof tag) == 0 ||
        (tag.FileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0)
        return file;
    CloseHandle(file);
    if ((tag.ReparseTag & nameSurrogate) == 0) // a file that the system keeps in another form
        return CreateFileA(path, access, share, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                           nullptr);
    SetLastError(krErrorIsLink);
    return INVALID_HANDLE_VALUE;
}

std::size_t writeAt(HANDLE file, const char* text, std::size_t size, OVERLAPPED* at)
{
    DWORD written = 0;
    return WriteFile(file, text, static_cast<DWORD>(size), &written, at) != 0 ? size : written;
}

/// Whether the process makes its files as that owner: its user, or for an administrator's the
/// group.
bool isOwner(PSID owner)
{
    HANDLE token = nullptr;
    if (OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token) == 0)
        return false;
    alignas(TOKEN_USER) char user[256];
    alignas(TOKEN_OWNER) char own[256];
    DWORD size = 0;
    const bool isUser = GetTokenInformation(token, TokenUser, user, sizeof user, &size) != 0 &&
                        EqualSid(owner, reinterpret_cast<TOKEN_USER*>(user)->User.Sid) != 0;
    const bool isOwn = GetTokenInformation(token, TokenOwner, own, sizeof own, &size) != 0 &&
                       EqualSid(owner, reinterpret_cast<TOKEN_OWNER*>(own)->Owner) != 0;
    CloseHandle(token);
    return isUser || isOwn;
}

/// Only files that another machine serves have a protocol for that.
bool isServed(HANDLE file)
{
    FILE_REMOTE_PROTOCOL_INFO protocol = {};
    return GetFileType(file) != FILE_TYPE_DISK ||
           GetFileInformationByHandleEx(file, FileRemoteProtocolInfo, &protocol, sizeof protocol) !=
               0;
}

/// Gives the name of an open file to another one: renames it out of the way, and removes it when it
/// is closed.
bool discard(const char* path)
{
    static std::atomic<unsigned> count{0};
    char away[1024];
    const int length = std::snprintf(away, sizeof away, "%s~%lu-%u", path, GetCurrentProcessId(),
                                     count.fetch_add(1));
    if (length < 0 || static_cast<std::size_t>(length) >= sizeof away)
        return fail(ERROR_FILENAME_EXCED_RANGE);
    return MoveFileExA(path, away, 0) != 0 && DeleteFileA(away) != 0;
}

} // namespace

bool KrLogFile::open(const char* path, bool, bool isAlone) noexcept
{
    close();
    const DWORD others = FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const HANDLE file = openHere(path, FILE_SHARE_READ | (isAlone ? 0 : others));
    if (file == INVALID_HANDLE_VALUE)
        return false;
    _handle = reinterpret_cast<std::intptr_t>(file);
    _isStream = GetFileType(file) != FILE_TYPE_DISK;
    _isFar = isServed(file);
    return true;
}

void KrLogFile::close() noexcept
{
    if (isOpen())
        CloseHandle(handleOf(_handle));
    _handle = none;
}

bool KrLogFile::isAt(const char* path) const noexcept
{
    const HANDLE named =
        CreateFileA(path, 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                    OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (named == INVALID_HANDLE_VALUE)
        return false;
    BY_HANDLE_FILE_INFORMATION here = {};
    BY_HANDLE_FILE_INFORMATION there = {};
    const bool areKnown = GetFileInformationByHandle(handleOf(_handle), &here) != 0 &&
                          GetFileInformationByHandle(named, &there) != 0;
    CloseHandle(named);
    return areKnown && here.dwVolumeSerialNumber == there.dwVolumeSerialNumber &&
           here.nFileIndexHigh == there.nFileIndexHigh && here.nFileIndexLow == there.nFileIndexLow;
}

bool KrLogFile::isRemoved() const noexcept
{
    FILE_STANDARD_INFO standard = {};
    return GetFileInformationByHandleEx(handleOf(_handle), FileStandardInfo, &standard,
                                        sizeof standard) != 0 &&
           (standard.DeletePending != 0 || standard.NumberOfLinks == 0);
}

std::int64_t KrLogFile::getSize() const noexcept
{
    LARGE_INTEGER size = {};
    return GetFileSizeEx(handleOf(_handle), &size) != 0 ? size.QuadPart : -1;
}

std::size_t KrLogFile::append(const char* text, std::size_t size, unsigned) noexcept
{
    OVERLAPPED end = offsetOf(-1); // the system's word for the end, wherever that is by then
    return writeAt(handleOf(_handle), text, size, _isStream ? nullptr : &end);
}

bool KrLogFile::write(std::int64_t at, const char* text, std::size_t size) noexcept
{
    OVERLAPPED place = offsetOf(at);
    return writeAt(handleOf(_handle), text, size, &place) == size;
}

bool KrLogFile::read(std::int64_t at, char* buffer, std::size_t size) const noexcept
{
    OVERLAPPED place = offsetOf(at);
    DWORD count = 0;
    return ReadFile(handleOf(_handle), buffer, static_cast<DWORD>(size), &count, &place) != 0 &&
           count == size;
}

bool KrLogFile::cut(std::int64_t size) noexcept
{
    LARGE_INTEGER end = {};
    end.QuadPart = size;
    return SetFilePointerEx(handleOf(_handle), end, nullptr, FILE_BEGIN) != 0 &&
           SetEndOfFile(handleOf(_handle)) != 0;
}

bool KrLogFile::sync() noexcept
{
    return _isStream || FlushFileBuffers(handleOf(_handle)) != 0;
}

KrFileLock::KrFileLock(const std::string& path)
    : _path(path)
{
}

KrFileLock::~KrFileLock()
{
    close();
}

KrFileLock::Outcome KrFileLock::tryAcquire() noexcept
{
    const Outcome opened = openFile();
    if (opened != Outcome::held)
        return opened;
    OVERLAPPED range = {};
    if (LockFileEx(handleOf(_handle), LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0,
                   &range) != 0)
        return Outcome::held;
    const bool isBusy =
        GetLastError() == ERROR_LOCK_VIOLATION || GetLastError() == ERROR_IO_PENDING;
    return isBusy ? Outcome::busy : Outcome::impossible;
}

/// Others cannot remove the file while it is open here, so its path keeps naming it.
KrFileLock::Outcome KrFileLock::openFile() noexcept
{
    if (_handle != none)
        return Outcome::held;
    const HANDLE file = openHere(_path.c_str(), FILE_SHARE_READ | FILE_SHARE_WRITE);
    if (file != INVALID_HANDLE_VALUE)
        _handle = reinterpret_cast<std::intptr_t>(file);
    else if (GetLastError() == ERROR_SHARING_VIOLATION)
        return Outcome::busy;
    return _handle != none ? Outcome::held : Outcome::impossible;
}

void KrFileLock::release() noexcept
{
    OVERLAPPED range = {};
    UnlockFileEx(handleOf(_handle), 0, 1, 0, &range);
}

void KrFileLock::remove() noexcept
{
    close();
    DeleteFileA(_path.c_str());
}

void KrFileLock::close() noexcept
{
    if (_handle != none)
        CloseHandle(handleOf(_handle));
    _handle = none;
}

bool krLogExists(const char* path) noexcept
{
    return GetFileAttributesA(path) != INVALID_FILE_ATTRIBUTES ||
           GetLastError() != ERROR_FILE_NOT_FOUND;
}

bool krMoveLog(const char* from, const char* to) noexcept
{
    if (MoveFileExA(from, to, MOVEFILE_REPLACE_EXISTING) != 0)
        return true;
    return GetLastError() == ERROR_ACCESS_DENIED && discard(to) &&
           MoveFileExA(from, to, MOVEFILE_REPLACE_EXISTING) != 0;
}

/// Folders take the rights of those above them: those among the temporary files are the user's.
bool krMakeLogFolder(const char* path, bool) noexcept
{
    return CreateDirectoryA(path, nullptr) != 0 || GetLastError() == ERROR_ALREADY_EXISTS;
}

bool krIsPrivateFolder(const char* path) noexcept
{
    const DWORD attributes = GetFileAttributesA(path);
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return false;
    constexpr DWORD kind = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
    PSID owner = nullptr;
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    const DWORD problem =
        GetNamedSecurityInfoA(const_cast<char*>(path), SE_FILE_OBJECT, OWNER_SECURITY_INFORMATION,
                              &owner, nullptr, nullptr, nullptr, &descriptor);
    const bool isOwn = problem == ERROR_SUCCESS && isOwner(owner);
    LocalFree(descriptor);
    return ((attributes & kind) == FILE_ATTRIBUTE_DIRECTORY && isOwn) || fail(krErrorIsOpen);
}

/// The system keeps its folders in order itself.
bool krSyncLogFolder(const char*) noexcept
{
    return true;
}

std::size_t krWriteStandard(std::FILE* stream, const char* text, std::size_t size,
                            unsigned) noexcept
{
    return std::fwrite(text, 1, size, stream) == size && std::fflush(stream) == 0 ? size : 0;
}

bool krIsFarStandard(std::FILE* stream) noexcept
{
    return isServed(reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream))));
}

bool krIsLastThread() noexcept
{
    using Question = BOOLEAN(NTAPI*)();
    static const auto isShuttingDown = reinterpret_cast<Question>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleA("ntdll.dll"), "RtlDllShutdownInProgress")));
    return isShuttingDown != nullptr && isShuttingDown() != 0;
}

void krKeepLibrary() noexcept
{
    HMODULE self = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                       reinterpret_cast<const char*>(&krKeepLibrary), &self);
}

std::string krUserName()
{
    char name[257];
    DWORD size = sizeof name;
    return GetUserNameA(name, &size) != 0 ? name : "unknown";
}

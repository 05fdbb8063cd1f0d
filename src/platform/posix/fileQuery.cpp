#include <platform/posix/fileQuery.h>

#include <platform/posix/path.h>

#include <cerrno>
#include <string>

namespace
{

constexpr std::int64_t secondsFrom1601To1970 = 11644473600;
constexpr std::int64_t stepsPerSecond = 10000000;

} // namespace

FILETIME krFileTime(const timespec& time) noexcept
{
    const auto steps = static_cast<std::uint64_t>(
        (time.tv_sec + secondsFrom1601To1970) * stepsPerSecond + time.tv_nsec / 100);
    return {static_cast<DWORD>(steps), static_cast<DWORD>(steps >> 32)};
}

timespec krTimespec(const FILETIME& time) noexcept
{
    const std::uint64_t steps = (std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime;
    timespec result = {};
    result.tv_sec =
        static_cast<time_t>(steps / stepsPerSecond) - static_cast<time_t>(secondsFrom1601To1970);
    result.tv_nsec = static_cast<long>(steps % stepsPerSecond) * 100;
    return result;
}

DWORD krAttributes(const struct stat& status) noexcept
{
    DWORD attributes = (status.st_mode & 0222) == 0 ? FILE_ATTRIBUTE_READONLY : 0;
    if (S_ISDIR(status.st_mode))
        attributes |= FILE_ATTRIBUTE_DIRECTORY;
    else if (S_ISREG(status.st_mode))
        attributes |= FILE_ATTRIBUTE_ARCHIVE;
    else
        attributes |= FILE_ATTRIBUTE_SYSTEM;
    return attributes;
}

DWORD krPathAttributes(const char* hostPath, struct stat* status) noexcept
{
    struct stat own = {};
    struct stat& described = status != nullptr ? *status : own;
    if (::lstat(hostPath, &described) != 0)
    {
        krSetPathError(hostPath);
        return INVALID_FILE_ATTRIBUTES;
    }
    if (!S_ISLNK(described.st_mode))
        return krAttributes(described);
    struct stat target = {};
    if (::stat(hostPath, &target) != 0)
        return FILE_ATTRIBUTE_REPARSE_POINT;
    described = target;
    return krAttributes(target) |
           (S_ISDIR(target.st_mode) ? FILE_ATTRIBUTE_REPARSE_POINT : DWORD{0});
}

DWORD GetFileAttributesA(const char* path) noexcept
{
    std::string storage;
    const char* hostPath = krHostPath(path, storage);
    return hostPath != nullptr ? krPathAttributes(hostPath, nullptr) : INVALID_FILE_ATTRIBUTES;
}

BOOL SetFileAttributesA(const char* path, DWORD attributes) noexcept
{
    std::string storage;
    struct stat status = {};
    const char* hostPath = krHostPath(path, storage);
    if (hostPath == nullptr || krPathAttributes(hostPath, &status) == INVALID_FILE_ATTRIBUTES)
        return 0;
    const mode_t readable = status.st_mode & 0555;
    const mode_t mode =
        (attributes & FILE_ATTRIBUTE_READONLY) != 0 ? readable : (status.st_mode & 0777) | S_IWUSR;
    if (::chmod(hostPath, mode) == 0)
        return 1;
    krSetPathError(hostPath);
    return 0;
}

BOOL GetFileAttributesExA(const char* path, GET_FILEEX_INFO_LEVELS, void* data) noexcept
{
    std::string storage;
    struct stat status = {};
    const char* hostPath = krHostPath(path, storage);
    if (hostPath == nullptr)
        return 0;
    const DWORD attributes = krPathAttributes(hostPath, &status);
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return 0;
    const auto size = S_ISREG(status.st_mode) ? static_cast<std::uint64_t>(status.st_size) : 0;
    *static_cast<WIN32_FILE_ATTRIBUTE_DATA*>(data) = {attributes,
                                                      krFileTime(status.st_ctim),
                                                      krFileTime(status.st_atim),
                                                      krFileTime(status.st_mtim),
                                                      static_cast<DWORD>(size >> 32),
                                                      static_cast<DWORD>(size)};
    return 1;
}

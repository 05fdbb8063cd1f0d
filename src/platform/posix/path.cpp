#include <platform/posix/path.h>

#include <platform/platform.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>

#include <sys/stat.h>

namespace
{

bool isForbidden(char c)
{
    return (static_cast<unsigned char>(c) < 0x20) || std::strchr("<>:\"|?*", c) != nullptr;
}

/// The length of a drive's prefix.
std::size_t driveLength(const char* path)
{
    const bool letter = (path[0] >= 'A' && path[0] <= 'Z') || (path[0] >= 'a' && path[0] <= 'z');
    return letter && path[1] == ':' ? 2 : 0;
}

const char* fail(DWORD code)
{
    SetLastError(code);
    return nullptr;
}

} // namespace

const char* krHostPath(const char* path, std::string& storage) noexcept
{
    if (path == nullptr || *path == '\0')
        return fail(ERROR_PATH_NOT_FOUND);
    const std::size_t drive = driveLength(path);
    if (drive != 0 && path[0] != 'C' && path[0] != 'c')
        return fail(ERROR_PATH_NOT_FOUND);
    try
    {
        storage.assign(path + drive);
    }
    catch (const std::bad_alloc&)
    {
        return fail(ERROR_NOT_ENOUGH_MEMORY);
    }
    if (std::any_of(storage.begin(), storage.end(), isForbidden))
        return fail(ERROR_INVALID_NAME);
    std::replace(storage.begin(), storage.end(), '\\', '/');
    if (storage.empty())
        storage = "."; // the drive alone is its current directory
    return storage.c_str();
}

void krSetPathError(const char* hostPath) noexcept
{
    const int error = errno;
    const char* lastSeparator = std::strrchr(hostPath, '/');
    if (error != ENOENT || lastSeparator == nullptr || lastSeparator == hostPath)
        return SetLastError(krErrorFromErrno(error));
    try
    {
        struct stat status = {};
        const std::string folder(hostPath, lastSeparator);
        SetLastError(::stat(folder.c_str(), &status) == 0 ? ERROR_FILE_NOT_FOUND
                                                          : ERROR_PATH_NOT_FOUND);
    }
    catch (const std::bad_alloc&)
    {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    }
}

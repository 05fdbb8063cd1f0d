#include <platform/posix/fileQuery.h>
#include <platform/posix/handle.h>
#include <platform/posix/path.h>

#include <cerrno>
#include <cstring>
#include <new>
#include <string>

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

namespace
{

class Search : public KrHandleObject
{
public:
    explicit Search(DIR* stream)
        : _stream(stream)
    {
    }

    Search(const Search&) = delete;
    Search& operator=(const Search&) = delete;

    ~Search() override { ::closedir(_stream); }

    bool next(WIN32_FIND_DATAA& data) const;

private:
    DWORD getAttributes(const dirent& entry) const;

    DIR* const _stream;
};

/// Most file systems tell the type with the name, so that the entry itself need not be looked at.
DWORD Search::getAttributes(const dirent& entry) const
{
    if (entry.d_type == DT_REG)
        return FILE_ATTRIBUTE_ARCHIVE;
    if (entry.d_type == DT_DIR)
        return FILE_ATTRIBUTE_DIRECTORY;
    if (entry.d_type != DT_LNK && entry.d_type != DT_UNKNOWN)
        return FILE_ATTRIBUTE_SYSTEM;
    struct stat status = {};
    const int folder = ::dirfd(_stream);
    if (::fstatat(folder, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) != 0)
        return FILE_ATTRIBUTE_REPARSE_POINT; // gone meanwhile
    if (!S_ISLNK(status.st_mode))
        return krAttributes(status) & ~FILE_ATTRIBUTE_READONLY;
    if (::fstatat(folder, entry.d_name, &status, 0) != 0)
        return FILE_ATTRIBUTE_REPARSE_POINT;
    return (krAttributes(status) & ~FILE_ATTRIBUTE_READONLY) |
           (S_ISDIR(status.st_mode) ? FILE_ATTRIBUTE_REPARSE_POINT : DWORD{0});
}

bool Search::next(WIN32_FIND_DATAA& data) const
{
    errno = 0;
    const dirent* const entry = ::readdir(_stream); // NOLINT: each stream is its search's own
    if (entry == nullptr)
    {
        // A directory that has been removed meanwhile has no more entries either.
        SetLastError(errno == 0 || errno == ENOENT ? ERROR_NO_MORE_FILES : krErrorFromErrno(errno));
        return false;
    }
    data.dwFileAttributes = getAttributes(*entry);
    std::memcpy(data.cFileName, entry->d_name, std::strlen(entry->d_name) + 1);
    return true;
}

} // namespace

HANDLE FindFirstFileExA(const char* pattern, FINDEX_INFO_LEVELS, void* data, FINDEX_SEARCH_OPS,
                        void*, DWORD) noexcept
{
    const std::size_t length = pattern != nullptr ? std::strlen(pattern) : 0;
    if (length < 2 || pattern[length - 1] != '*' ||
        std::strchr("\\/", pattern[length - 2]) == nullptr)
    {
        SetLastError(ERROR_INVALID_NAME);
        return INVALID_HANDLE_VALUE;
    }
    try
    {
        std::string storage;
        const char* folder = krHostPath(std::string(pattern, length - 1).c_str(), storage);
        if (folder == nullptr)
            return INVALID_HANDLE_VALUE;
        DIR* const stream = ::opendir(folder);
        if (stream == nullptr)
        {
            SetLastError(errno == ENOENT    ? ERROR_PATH_NOT_FOUND
                         : errno == ENOTDIR ? ERROR_DIRECTORY
                                            : krErrorFromErrno(errno));
            return INVALID_HANDLE_VALUE;
        }
        auto* const search = new (std::nothrow) Search(stream);
        if (search == nullptr)
            ::closedir(stream);
        else if (search->next(*static_cast<WIN32_FIND_DATAA*>(data)))
            return KrHandleObject::open(search);
        delete search;
        SetLastError(search == nullptr ? ERROR_NOT_ENOUGH_MEMORY : ERROR_FILE_NOT_FOUND);
    }
    catch (const std::bad_alloc&)
    {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    }
    return INVALID_HANDLE_VALUE;
}

BOOL FindNextFileA(HANDLE handle, WIN32_FIND_DATAA* data) noexcept
{
    const Search* const search = krObject<Search>(handle);
    return search != nullptr && search->next(*data) ? 1 : 0;
}

BOOL FindClose(HANDLE handle) noexcept
{
    return krObject<Search>(handle) != nullptr ? CloseHandle(handle) : 0;
}

BOOL RemoveDirectoryA(const char* path) noexcept
{
    std::string storage;
    const char* hostPath = krHostPath(path, storage);
    if (hostPath == nullptr)
        return 0;
    const DWORD attributes = krPathAttributes(hostPath, nullptr);
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return 0;
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
    {
        SetLastError(ERROR_DIRECTORY);
        return 0;
    }
    const bool isLink = (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
    if ((isLink ? ::unlink(hostPath) : ::rmdir(hostPath)) == 0)
        return 1;
    if (errno == EEXIST)
        SetLastError(ERROR_DIR_NOT_EMPTY);
    else
        krSetPathError(hostPath);
    return 0;
}

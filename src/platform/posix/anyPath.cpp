#include <platform/anyPath.h>

#include <platform/posix/path.h>

#include <algorithm>
#include <cstring>

#include <sys/stat.h>
#include <unistd.h>

bool krFindFirst(const char* folder, KrSearch& search)
{
    const std::string pattern = std::string(folder) + "\\*";
    search.handle = FindFirstFileExA(pattern.c_str(), FindExInfoBasic, &search.data,
                                     FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH);
    search.name = search.data.cFileName;
    search.attributes = search.data.dwFileAttributes;
    return search.handle != INVALID_HANDLE_VALUE;
}

bool krFindNext(KrSearch& search)
{
    const bool found = FindNextFileA(search.handle, &search.data) != 0;
    search.attributes = search.data.dwFileAttributes;
    return found;
}

HANDLE krCreateFile(const char* path, DWORD access, DWORD share, DWORD disposition,
                    DWORD flagsAndAttributes)
{
    return CreateFileA(path, access, share, nullptr, disposition, flagsAndAttributes, nullptr);
}

DWORD krGetAttributes(const char* path)
{
    return GetFileAttributesA(path);
}

bool krSetAttributes(const char* path, DWORD attributes)
{
    return SetFileAttributesA(path, attributes) != 0;
}

bool krDescribe(const char* path, WIN32_FILE_ATTRIBUTE_DATA& data)
{
    return GetFileAttributesExA(path, GetFileExInfoStandard, &data) != 0;
}

bool krDeleteFile(const char* path)
{
    return DeleteFileA(path) != 0;
}

bool krMoveFile(const char* from, const char* to, DWORD flags)
{
    return MoveFileExA(from, to, flags) != 0;
}

bool krCreateDirectory(const char* path)
{
    return CreateDirectoryA(path, nullptr) != 0;
}

bool krRemoveDirectory(const char* path)
{
    return RemoveDirectoryA(path) != 0;
}

void krCopyProtection(const char* from, const char* to)
{
    std::string storage;
    std::string targetStorage;
    const char* const source = krHostPath(from, storage);
    const char* const target = krHostPath(to, targetStorage);
    struct stat status = {};
    if (source == nullptr || target == nullptr || ::stat(source, &status) != 0)
        return;
    mode_t mode = status.st_mode & 0777;
    const bool keepsGroup = ::chown(target, status.st_uid, status.st_gid) == 0 ||
                            ::chown(target, ~uid_t{0}, status.st_gid) == 0;
    if (!keepsGroup) // then another group shall not get what was this one's
        mode = (mode & ~mode_t{070}) | ((mode & mode_t{07}) << 3);
    ::chmod(target, mode);
}

bool krRename(const char* from, const char* to)
{
    return MoveFileExA(from, to, MOVEFILE_COPY_ALLOWED) != 0;
}

bool krGetFullPath(const char* path, std::string& full, std::size_t& lastElement)
{
    return krFindFullPath(path, full, lastElement);
}

std::filesystem::path krToStdPath(const char* path)
{
    std::string text(path);
    if (text.size() >= 2 && (text[0] == 'C' || text[0] == 'c') && text[1] == ':')
        text.erase(0, 2);
    std::replace(text.begin(), text.end(), '\\', '/');
    return text;
}

bool krFromStdPath(const std::filesystem::path& path, std::string& text)
{
    text = path.native();
    if (text.find_first_of(":\\") != std::string::npos)
        return false;
    std::replace(text.begin(), text.end(), '/', '\\');
    if (path.is_absolute())
        text.insert(0, "C:");
    return true;
}

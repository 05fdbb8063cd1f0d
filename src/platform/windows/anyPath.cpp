#include <platform/anyPath.h>
#include <platform/windows/wideText.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace
{

/// Directories may be 12 characters shorter than files: room for a name of the old kind.
constexpr std::size_t shortLimit = MAX_PATH - 12;

bool isShort(const char* path)
{
    return std::strlen(path) < shortLimit;
}

/// The full path in its wide form, "" with the last error set if there is none.
std::wstring wideFullPath(const char* path)
{
    const std::wstring wide = krWiden(path);
    std::wstring full(GetFullPathNameW(wide.c_str(), 0, nullptr, nullptr), L'\0');
    const DWORD length =
        GetFullPathNameW(wide.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    full.resize(std::min<std::size_t>(length, full.size()));
    return full;
}

/// The form that the system takes as it is, however long.
std::wstring longForm(const char* path)
{
    std::wstring full = wideFullPath(path);
    if (full.rfind(L"\\\\?\\", 0) == 0 || full.rfind(L"\\\\.\\", 0) == 0)
        return full;
    if (full.rfind(L"\\\\", 0) == 0)
        return L"\\\\?\\UNC" + full.substr(1);
    return L"\\\\?\\" + full;
}

void take(KrSearch& search)
{
    search.storage = krNarrow(search.data.cFileName);
    search.name = search.storage.c_str();
    search.attributes = search.data.dwFileAttributes;
}

} // namespace

bool krFindFirst(const char* folder, KrSearch& search)
{
    std::wstring pattern = isShort(folder) ? krWiden(folder) : longForm(folder);
    pattern += L"\\*";
    search.handle = FindFirstFileExW(pattern.c_str(), FindExInfoBasic, &search.data,
                                     FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH);
    if (search.handle == INVALID_HANDLE_VALUE)
        return false;
    take(search);
    return true;
}

bool krFindNext(KrSearch& search)
{
    if (FindNextFileW(search.handle, &search.data) == 0)
        return false;
    take(search);
    return true;
}

HANDLE krCreateFile(const char* path, DWORD access, DWORD share, DWORD disposition,
                    DWORD flagsAndAttributes)
{
    return isShort(path)
               ? CreateFileA(path, access, share, nullptr, disposition, flagsAndAttributes, nullptr)
               : CreateFileW(longForm(path).c_str(), access, share, nullptr, disposition,
                             flagsAndAttributes, nullptr);
}

DWORD krGetAttributes(const char* path)
{
    return isShort(path) ? GetFileAttributesA(path) : GetFileAttributesW(longForm(path).c_str());
}

bool krSetAttributes(const char* path, DWORD attributes)
{
    return (isShort(path) ? SetFileAttributesA(path, attributes)
                          : SetFileAttributesW(longForm(path).c_str(), attributes)) != 0;
}

bool krDescribe(const char* path, WIN32_FILE_ATTRIBUTE_DATA& data)
{
    return (isShort(path)
                ? GetFileAttributesExA(path, GetFileExInfoStandard, &data)
                : GetFileAttributesExW(longForm(path).c_str(), GetFileExInfoStandard, &data)) != 0;
}

bool krDeleteFile(const char* path)
{
    return (isShort(path) ? DeleteFileA(path) : DeleteFileW(longForm(path).c_str())) != 0;
}

bool krMoveFile(const char* from, const char* to, DWORD flags)
{
    return (isShort(from) && isShort(to)
                ? MoveFileExA(from, to, flags)
                : MoveFileExW(longForm(from).c_str(), longForm(to).c_str(), flags)) != 0;
}

bool krCreateDirectory(const char* path)
{
    return (isShort(path) ? CreateDirectoryA(path, nullptr)
                          : CreateDirectoryW(longForm(path).c_str(), nullptr)) != 0;
}

bool krRemoveDirectory(const char* path)
{
    return (isShort(path) ? RemoveDirectoryA(path) : RemoveDirectoryW(longForm(path).c_str())) != 0;
}

void krCopyProtection(const char* from, const char* to)
{
    constexpr SECURITY_INFORMATION part = DACL_SECURITY_INFORMATION;
    const std::wstring source = longForm(from);
    const std::wstring target = longForm(to);
    DWORD size = 0;
    GetFileSecurityW(source.c_str(), part, nullptr, 0, &size);
    std::string descriptor(size, '\0');
    if (GetFileSecurityW(source.c_str(), part, descriptor.data(), size, &size) != 0)
        SetFileSecurityW(target.c_str(), part, descriptor.data());
    constexpr DWORD kept = FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM |
                           FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;
    const DWORD attributes = GetFileAttributesW(source.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES)
        SetFileAttributesW(target.c_str(), attributes & kept);
}

bool krRename(const char* from, const char* to)
{
    if (isShort(from) && isShort(to))
        return std::rename(from, to) == 0;
    return krMoveFile(from, to, MOVEFILE_COPY_ALLOWED);
}

bool krGetFullPath(const char* path, std::string& full, std::size_t& lastElement)
{
    if (isShort(path))
    {
        char buffer[1024];
        char* last = nullptr;
        SetLastError(ERROR_SUCCESS);
        const DWORD length = GetFullPathNameA(path, sizeof buffer, buffer, &last);
        if (length == 0 && GetLastError() == ERROR_SUCCESS)
            SetLastError(ERROR_INVALID_NAME); // some systems leave it at that for an empty path
        if (length < sizeof buffer)
        {
            full.assign(buffer, length);
            lastElement = last != nullptr ? static_cast<std::size_t>(last - buffer) : length;
            return length != 0;
        }
    }
    full = krNarrow(wideFullPath(path).c_str());
    lastElement = full.rfind('\\') + 1;
    return !full.empty();
}

std::filesystem::path krToStdPath(const char* path)
{
    return krWiden(path);
}

bool krFromStdPath(const std::filesystem::path& path, std::string& text)
{
    bool isExact = false;
    text = krNarrow(path.c_str(), &isExact);
    std::replace(text.begin(), text.end(), '/', '\\');
    return isExact;
}

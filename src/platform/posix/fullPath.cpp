#include <platform/platform.h>
#include <platform/posix/path.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <string_view>

#include <limits.h>
#include <unistd.h>

namespace
{

bool isLetter(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

void useBackslashes(std::string& text)
{
    for (char& c : text)
        c = c == '/' ? '\\' : c;
}

/// The current directory without a separator at its end ("C:" for the root), or "" with the last
/// error set.
std::string getCurrentDirectory()
{
    char buffer[PATH_MAX];
    if (::getcwd(buffer, sizeof buffer) == nullptr)
    {
        SetLastError(krErrorFromErrno(errno));
        return "";
    }
    std::string text = std::string("C:") + buffer;
    useBackslashes(text);
    if (text.back() == '\\')
        text.pop_back();
    return text;
}

/// The length of "\\\\server\\share".
std::size_t shareLength(const std::string& path)
{
    std::size_t end = path.find('\\', 2);
    if (end != std::string::npos)
        end = path.find('\\', end + 1);
    return end == std::string::npos ? path.size() : end;
}

/// Puts a folder before a path; none, with the last error set, if that is "".
void prepend(const std::string& folder, std::string& path)
{
    if (folder.empty())
        path.clear();
    else
        path.insert(0, folder + '\\');
}

/// Has a path begin at the root of a drive or share, whose length is returned. The path is empty,
/// with the last error set, if there is no such.
std::size_t makeRooted(std::string& path)
{
    useBackslashes(path);
    if (path.size() >= 2 && path[0] == '\\' && path[1] == '\\')
    {
        // Behind the two at its beginning no separator stands beside another.
        const auto isDouble = [](char before, char c) { return before == '\\' && c == '\\'; };
        path.erase(std::unique(path.begin() + 1, path.end(), isDouble), path.end());
        return shareLength(path);
    }
    constexpr std::size_t driveLength = 2;
    const bool hasDrive = path.size() >= driveLength && path[1] == ':' && isLetter(path[0]);
    if (hasDrive && path.size() > driveLength && path[2] == '\\')
        return driveLength;
    if (hasDrive)
    {
        const std::string drive = path.substr(0, driveLength);
        path.erase(0, driveLength);
        prepend(drive == "C:" || drive == "c:" ? getCurrentDirectory() : drive, path);
    }
    else if (path[0] == '\\')
        path.insert(0, "C:");
    else
        prepend(getCurrentDirectory(), path);
    return driveLength;
}

/// Moves an element of the path behind the `end` of those that stay; returns their end then.
std::size_t takeElement(std::string& path, std::size_t root, std::size_t end,
                        std::string_view element, bool isLast)
{
    if (element.empty() || element == ".")
        return end;
    if (element == "..")
    {
        const std::size_t parent = std::string_view(path).substr(0, end).rfind('\\');
        return parent != std::string::npos && parent >= root ? parent : end;
    }
    if (!isLast && element.back() == '.')
        element.remove_suffix(1); // the system drops one dot at the end of a directory's name
    path[end] = '\\';
    std::memmove(&path[end + 1], element.data(), element.size());
    return end + 1 + element.size();
}

/// Takes out ".", ".." and doubled separators, and what the system drops at the end: dots, blanks.
void collapse(std::string& path, std::size_t root)
{
    std::size_t end = root;
    bool endsInSeparator = false;
    for (std::size_t at = root; at < path.size();)
    {
        const std::size_t start = at + 1; // behind a separator
        at = std::min(path.find('\\', start), path.size());
        const bool isLast = at == path.size();
        const std::string_view element = std::string_view(path).substr(start, at - start);
        endsInSeparator = isLast && element.empty();
        end = takeElement(path, root, end, element, isLast);
    }
    path.resize(end);
    if (!endsInSeparator)
        while (path.size() > root && (path.back() == '.' || path.back() == ' '))
            path.pop_back();
    if (path.back() != '\\' && (endsInSeparator || path.size() == root))
        path += '\\';
}

/// Hands out a text as the system's calls do.
DWORD handOut(const std::string& text, DWORD size, char* buffer)
{
    if (text.size() + 1 > size)
        return static_cast<DWORD>(text.size() + 1);
    std::memcpy(buffer, text.c_str(), text.size() + 1);
    return static_cast<DWORD>(text.size());
}

} // namespace

bool krFindFullPath(const char* path, std::string& full, std::size_t& lastElement) noexcept
try
{
    if (path == nullptr || path[std::strspn(path, " ")] == '\0')
    {
        SetLastError(ERROR_INVALID_NAME);
        return false;
    }
    full = path;
    const std::size_t root = makeRooted(full);
    if (full.empty())
        return false;
    collapse(full, root);
    const std::size_t start = full.rfind('\\') + 1;
    lastElement = start > root ? start : full.size();
    return true;
}
catch (const std::bad_alloc&)
{
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return false;
}

DWORD GetFullPathNameA(const char* path, DWORD size, char* buffer, char** lastElement) noexcept
{
    std::string full;
    std::size_t start = 0;
    if (!krFindFullPath(path, full, start))
        return 0;
    const DWORD length = handOut(full, size, buffer);
    if (length < size && lastElement != nullptr)
        *lastElement = start != full.size() ? buffer + start : nullptr;
    return length;
}

DWORD GetTempPathA(DWORD size, char* buffer) noexcept
try
{
    const char* const named = std::getenv("TMPDIR");
    std::string path = std::string(named != nullptr && *named != '\0' ? named : "/tmp") + '/';
    const std::size_t root = makeRooted(path);
    if (path.empty())
        return 0;
    collapse(path, root);
    return handOut(path, size, buffer);
}
catch (const std::bad_alloc&)
{
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return 0;
}

int _getdrive() noexcept
{
    return 3;
}

int _isatty(int descriptor) noexcept
{
    return ::isatty(descriptor);
}

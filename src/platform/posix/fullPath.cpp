#include <platform/platform.h>

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

std::string withBackslashes(std::string text)
{
    for (char& c : text)
        if (c == '/')
            c = '\\';
    return text;
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
    std::string text = withBackslashes(std::string("C:") + buffer);
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

/// A path from the root of a drive or share on, and the length of that root.
struct RootedPath
{
    std::string text;
    std::size_t root = 0;
};

RootedPath makeRooted(const char* path)
{
    std::string text = withBackslashes(path);
    if (text.size() >= 2 && text[0] == '\\' && text[1] == '\\')
    {
        // Behind the two at its beginning no separator stands beside another.
        const auto isDouble = [](char before, char c) { return before == '\\' && c == '\\'; };
        const auto start = text.begin() + 1;
        text.erase(std::unique(start, text.end(), isDouble), text.end());
        return {text, shareLength(text)};
    }
    if (text.size() >= 2 && text[1] == ':' && isLetter(text[0]))
    {
        if (text.size() >= 3 && text[2] == '\\')
            return {text, 2};
        const bool isCurrent = text[0] == 'C' || text[0] == 'c';
        const std::string base = isCurrent ? getCurrentDirectory() : text.substr(0, 2);
        return {base.empty() ? "" : base + '\\' + text.substr(2), 2};
    }
    if (text[0] == '\\')
        return {"C:" + text, 2};
    const std::string base = getCurrentDirectory();
    return {base.empty() ? "" : base + '\\' + text, 2};
}

void appendElement(std::string& result, std::size_t root, std::string_view element, bool isLast)
{
    if (element.empty() || element == ".")
        return;
    if (element == "..")
    {
        const std::size_t parent = result.rfind('\\');
        if (parent != std::string::npos && parent >= root)
            result.erase(parent);
        return;
    }
    if (!isLast && element.back() == '.')
        element.remove_suffix(1); // the system drops one dot at the end of a directory's name
    result += '\\';
    result += element;
}

/// Takes out ".", ".." and doubled separators, and what the system drops at the end: dots, blanks.
std::string collapse(const RootedPath& path)
{
    std::string result = path.text.substr(0, path.root);
    std::size_t at = path.root;
    bool endsInSeparator = false;
    while (at < path.text.size())
    {
        const std::size_t start = at + 1; // behind a separator
        at = std::min(path.text.find('\\', start), path.text.size());
        const bool isLast = at == path.text.size();
        const std::string_view element = std::string_view(path.text).substr(start, at - start);
        endsInSeparator = isLast && element.empty();
        appendElement(result, path.root, element, isLast);
    }
    if (!endsInSeparator)
        while (result.size() > path.root && (result.back() == '.' || result.back() == ' '))
            result.pop_back();
    if (result.back() != '\\' && (endsInSeparator || result.size() == path.root))
        result += '\\';
    return result;
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

DWORD GetFullPathNameA(const char* path, DWORD size, char* buffer, char** lastElement) noexcept
try
{
    if (path == nullptr || path[std::strspn(path, " ")] == '\0')
    {
        SetLastError(ERROR_INVALID_NAME);
        return 0;
    }
    const RootedPath rooted = makeRooted(path);
    if (rooted.text.empty())
        return 0;
    const std::string full = collapse(rooted);
    const DWORD length = handOut(full, size, buffer);
    if (length < size && lastElement != nullptr)
    {
        const std::size_t start = full.rfind('\\') + 1;
        *lastElement = start == full.size() || start <= rooted.root ? nullptr : buffer + start;
    }
    return length;
}
catch (const std::bad_alloc&)
{
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return 0;
}

DWORD GetTempPathA(DWORD size, char* buffer) noexcept
try
{
    const char* const named = std::getenv("TMPDIR");
    const std::string path = std::string(named != nullptr && *named != '\0' ? named : "/tmp") + '/';
    return handOut(collapse(makeRooted(path.c_str())), size, buffer);
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

#include <base/osFilePath.h>

#include <base/exSysError.h>
#include <base/osEnv.h>
#include <base/osFileEx.h>
#include <base/raise.h>
#include <platform/anyPath.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <vector>

namespace Kr
{

namespace
{

constexpr char separator = '\\';
constexpr std::size_t bufferSize = 1024;

struct FullPath
{
    std::string text;
    std::size_t lastElement = 0; ///< where it begins; the length if there is none
};

FullPath askFullPath(const char* path)
{
    FullPath full;
    if (!krGetFullPath(path, full.text, full.lastElement))
        raise<ExSysErrorWindows>(KR_HERE);
    return full;
}

/// Whether the character stands for itself in an address.
bool isPlain(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           std::strchr("/:-._~", c) != nullptr;
}

} // namespace

OsFilePath::OsFilePath(const std::filesystem::path& path)
    : _path(nullptr)
{
    std::string text;
    if (!krFromStdPath(path, text))
        raise<OsFileEx::ExInvalidPath>(KR_HERE, text.c_str());
    assign(text);
}

std::filesystem::path OsFilePath::getStdPath() const
{
    return krToStdPath(getChars());
}

std::string OsFilePath::getUri() const
{
    const std::string path = krToStdPath(askFullPath(getChars()).text.c_str()).generic_u8string();
    const bool isRemote = path.compare(0, 2, "//") == 0;
    std::string uri = isRemote ? "file:" : path[0] == '/' ? "file://" : "file:///";
    for (const char c : path)
    {
        constexpr char digits[] = "0123456789ABCDEF";
        const auto byte = static_cast<unsigned char>(c);
        if (isPlain(c))
            uri += c;
        else
            (uri += '%').append(1, digits[byte >> 4]).append(1, digits[byte & 15]);
    }
    return uri;
}

const char* OsFilePath::getSeparator() noexcept
{
    static constexpr char text[] = {separator, '\0'};
    return text;
}

bool OsFilePath::isAbsolute(const char* path) noexcept
{
    if (std::strlen(path) < 3)
        return false;
    return path[1] == ':' || (path[0] == separator && path[1] == separator);
}

OsFilePath OsFilePath::getFullPath() const
{
    return askFullPath(getChars()).text;
}

OsFilePath OsFilePath::getBaseName() const
{
    const FullPath full = askFullPath(getChars());
    return full.text.c_str() + full.lastElement;
}

OsFilePath OsFilePath::getDirectoryName() const
{
    const FullPath full = askFullPath(getChars());
    // These two name a directory as they stand.
    if (std::strcmp(getChars(), ".") == 0 || std::strcmp(getChars(), "..") == 0)
        return full.text;
    const std::size_t end = full.text.rfind(separator);
    return full.text.substr(0, end);
}

char* OsFilePath::getRootDir(char* buffer)
{
    std::snprintf(buffer, bufferSize, "%c:\\", static_cast<char>(_getdrive() + 64));
    return buffer;
}

OsFilePath OsFilePath::getRootDir()
{
    char buffer[bufferSize];
    return getRootDir(buffer);
}

char* OsFilePath::getTempDir(char* buffer)
{
    const DWORD length = GetTempPathA(bufferSize, buffer);
    if (length >= bufferSize)
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
    if (length == 0 || length >= bufferSize)
        raise<ExSysErrorWindows>(KR_HERE);
    return buffer;
}

OsFilePath OsFilePath::getTempDir()
{
    char buffer[bufferSize];
    return getTempDir(buffer);
}

/// @param buffer has room for the value of HOME
char* OsFilePath::getHomeDir(char* buffer)
{
    const char* const home = OsEnv::getVariable("HOME");
    const std::size_t size = std::strlen(home) + 1;
    std::replace_copy(home, home + size, buffer, '/', separator);
    return buffer;
}

OsFilePath OsFilePath::getHomeDir()
{
    const char* const home = OsEnv::getVariable("HOME");
    if (home == nullptr)
        raise<OsFileEx::ExHomeNotDefined>(KR_HERE);
    std::vector<char> buffer(std::strlen(home) + 1);
    return getHomeDir(buffer.data());
}

} // namespace Kr

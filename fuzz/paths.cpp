// Fuzzes the operations on paths: the rules of joining and comparing, and the base name, directory
// and extension against each other. Two texts, separated by the first line feed.

#include <base/exSysError.h>
#include <base/osFileEx.h>
#include <base/osFilePath.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

namespace
{

using Kr::OsFilePath;

void require(bool holds)
{
    if (!holds)
        std::abort();
}

int sign(int value)
{
    return (value > 0) - (value < 0);
}

std::string joined(const std::string& left, const std::string& right)
{
    return left.empty() || left.back() == '\\' ? left + right : left + '\\' + right;
}

void checkJoin(const std::string& left, const std::string& right)
{
    const OsFilePath path(left);
    const OsFilePath other(right);
    try
    {
        require((path + other).getString() == joined(left, right));
        require(other.isRelative());
    }
    catch (const Kr::OsFileEx::ExIllegalPathConcat&)
    {
        require(other.isAbsolute());
    }
    OsFilePath appended(path);
    try
    {
        appended += right.c_str();
        require(appended.getString() == joined(left, right));
        require(right.find('\\') == std::string::npos);
    }
    catch (const Kr::OsFileEx::ExSeparatorNotAllowed&)
    {
        require(right.find('\\') != std::string::npos && appended == path);
    }
    require(sign(OsFilePath::compare(left.c_str(), right.c_str())) == sign(left.compare(right)));
}

void checkElements(const OsFilePath& path)
{
    const std::string full = path.getFullPath().getString();
    const std::string name = path.getBaseName().getString();
    require(OsFilePath(full).getFullPath() == full); // a full path stays as it is
    require(full.find("\\\\", 1) == std::string::npos && full.find('/') == std::string::npos);
    require(full.size() >= name.size() && name.find('\\') == std::string::npos);
    require(full.compare(full.size() - name.size(), name.size(), name) == 0);
    const std::size_t dot = name.rfind('.');
    const Kr::ArrayPtr<char> extension(path.getExtension());
    require(extension.get() == (dot != std::string::npos ? name.substr(dot + 1) : ""));
    const std::string directory = path.getDirectoryName().getString();
    require(directory.empty() || directory.back() != '\\');
    require(full.compare(0, directory.size(), directory) == 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const std::string text(bytes.c_str());
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string left = text.substr(0, end);
    const std::string right = end < text.size() ? text.substr(end + 1) : "";
    checkJoin(left, right);
    try
    {
        checkElements(left);
        static_cast<void>(OsFilePath(left).getUri());
    }
    catch (const Kr::ExSysErrorWindows&)
    {
        require(left.find_first_not_of(' ') == std::string::npos);
    }
    return 0;
}

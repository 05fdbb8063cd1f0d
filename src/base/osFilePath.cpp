#include <base/osFilePath.h>

#include <base/assert.h>
#include <base/internal/errors/fixedText.h>
#include <base/osFileEx.h>
#include <base/raise.h>

#include <algorithm>
#include <cstring>
#include <ostream>
#include <utility>

namespace Kr
{

OsFilePath::OsFilePath()
    : _path(new char[1]())
{
}

OsFilePath::OsFilePath(const char* path)
    : _path(nullptr)
{
    set(orEmpty(path));
}

OsFilePath::OsFilePath(std::string_view path)
    : _path(nullptr)
{
    assign(path);
}

OsFilePath::OsFilePath(const std::string& path)
    : _path(nullptr)
{
    assign(path);
}

OsFilePath::OsFilePath(const OsFilePath& other)
    : _path(nullptr)
{
    set(other.getChars());
}

OsFilePath::OsFilePath(OsFilePath&& other) noexcept
    : _path(std::exchange(other._path, nullptr))
{
}

OsFilePath::~OsFilePath()
{
    delete[] _path;
}

OsFilePath& OsFilePath::operator=(const OsFilePath& other)
{
    if (this != &other)
        set(other.getChars());
    return *this;
}

OsFilePath& OsFilePath::operator=(OsFilePath&& other) noexcept
{
    std::swap(_path, other._path);
    return *this;
}

OsFilePath& OsFilePath::operator=(const char* path)
{
    KR_ASSERT_TEXT(path != nullptr, "path != 0", __LINE__);
    set(path);
    return *this;
}

/// The text may be part of the old one, so that goes last.
void OsFilePath::set(const char* path)
{
    KR_ASSERT_TEXT(path != nullptr, "path != 0", __LINE__);
    const std::size_t size = std::strlen(path) + 1;
    char* const text = new char[size];
    std::memcpy(text, path, size);
    delete[] std::exchange(_path, text);
}

void OsFilePath::assign(std::string_view path)
{
    const std::string text(path);
    if (text.find('\0') != std::string::npos)
        raise<OsFileEx::ExInvalidPath>(KR_HERE, text.c_str());
    set(text.c_str());
}

std::string OsFilePath::getString() const
{
    return getChars();
}

std::string_view OsFilePath::getView() const noexcept
{
    return getChars();
}

bool OsFilePath::isAbsolute() const noexcept
{
    return isAbsolute(getChars());
}

std::ostream& OsFilePath::dump(std::ostream& stream) const
{
    return stream << getChars();
}

std::ostream& operator<<(std::ostream& stream, const OsFilePath& path)
{
    return path.dump(stream);
}

int OsFilePath::compare(const char* lhs, const char* rhs)
{
    KR_ASSERT_TEXT(lhs != nullptr && rhs != nullptr, "lhs != 0 && rhs != 0", __LINE__);
    return std::strcmp(lhs, rhs);
}

OsFilePath& OsFilePath::operator+=(const OsFilePath& path)
{
    if (path.isAbsolute())
        raise<OsFileEx::ExIllegalPathConcat>(KR_HERE);
    concatenate(path.getChars());
    return *this;
}

OsFilePath& OsFilePath::operator+=(const char* path)
{
    KR_ASSERT_TEXT(path != nullptr, "path != 0", __LINE__);
    if (std::strchr(path, *getSeparator()) != nullptr)
        raise<OsFileEx::ExSeparatorNotAllowed>(KR_HERE);
    concatenate(path);
    return *this;
}

// The sums build their text at once, where a copy and an append would allocate twice.

OsFilePath OsFilePath::operator+(const OsFilePath& path) const
{
    if (path.isAbsolute())
        raise<OsFileEx::ExIllegalPathConcat>(KR_HERE);
    return {Adopt::array, join(getChars(), path.getChars())};
}

OsFilePath OsFilePath::operator+(const char* path) const
{
    KR_ASSERT_TEXT(path != nullptr, "path != 0", __LINE__);
    if (std::strchr(path, *getSeparator()) != nullptr)
        raise<OsFileEx::ExSeparatorNotAllowed>(KR_HERE);
    return {Adopt::array, join(getChars(), path)};
}

void OsFilePath::concatenate(const char* element)
{
    delete[] std::exchange(_path, join(getChars(), element));
}

/// A new array with the element behind the path, a separator between them where one is needed.
char* OsFilePath::join(const char* path, const char* element)
{
    KR_ASSERT_TEXT(std::strlen(getSeparator()) == 1, "std::strlen( getSeparator() ) == 1",
                   __LINE__);
    const char separator = *getSeparator();
    const std::size_t length = std::strlen(path);
    const std::size_t size = std::strlen(element) + 1;
    char* const joined = new char[length + size + 1];
    char* end = std::copy_n(path, length, joined);
    if (length != 0 && path[length - 1] != separator)
        *end++ = separator;
    std::copy_n(element, size, end);
    return joined;
}

ArrayPtrRet<char> OsFilePath::getExtension() const
{
    const OsFilePath baseName = getBaseName();
    const char* const dot = std::strrchr(baseName.getChars(), '.');
    const char* const extension = dot != nullptr ? dot + 1 : "";
    const std::size_t size = std::strlen(extension) + 1;
    ArrayPtr<char> result(new char[size]);
    std::memcpy(result.get(), extension, size);
    return result;
}

} // namespace Kr

#pragma once

/// @file
/// The path of a file or directory: a text, kept as it was given and read only where an operation
/// needs to.
/// @code
/// Kr::OsFilePath shot = Kr::OsFilePath::getTempDir() + "renders"; // adds a separator where needed
/// shot += "frame.0001.exr";
/// std::cout << shot << " in " << shot.getDirectoryName() << '\n';
/// const Kr::ArrayPtr<char> extension(shot.getExtension()); // "exr"
/// std::filesystem::file_size(shot.getStdPath());
/// @endcode
/// The separator is the backslash, on every system. System calls also take the forward slash, so
/// "/tmp/x" names what "C:\tmp\x" does where the root is drive C:; but for the operations of this
/// class a forward slash is a character as any other. Pitfalls:
/// - "/tmp/x" is therefore a relative path. Make a path of the host's own from a
///   `std::filesystem::path`, which comes out as "C:\tmp\x".
/// - `path + "a\\b"` raises, since a bare text is one element; `path + OsFilePath("a\\b")` does
/// not.
/// - Comparison is byte by byte: C:\A and c:\a are different paths that name the same file.
///
/// Texts are in the system's narrow code page. An object may be shared by threads for reading.

#include <base/arrayPtr.h>
#include <base/krBaseApi.h>

#include <cstddef>
#include <filesystem>
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>

namespace Kr
{

class KR_BASE_API OsFilePath
{
public:
    /// The empty path.
    OsFilePath();
    /// A null pointer gives the empty path.
    OsFilePath(const char* path); // NOLINT: converting on purpose, here and below
    /// Raises `OsFileEx::ExInvalidPath` if the text holds a null character.
    OsFilePath(std::string_view path);
    OsFilePath(const std::string& path);
    /// With backslashes, and an absolute path with its drive. Raises `OsFileEx::ExInvalidPath` if a
    /// name in it has no narrow text, or holds a character that is a separator here.
    OsFilePath(const std::filesystem::path& path);

    OsFilePath(const OsFilePath& other);
    OsFilePath(OsFilePath&& other) noexcept; ///< leaves the empty path
    ~OsFilePath();

    OsFilePath& operator=(const OsFilePath& other);
    OsFilePath& operator=(OsFilePath&& other) noexcept;
    /// Raises `ExInternalError` for a null pointer, as `set` does.
    OsFilePath& operator=(const char* path);
    void set(const char* path);

    const char* getChars() const noexcept { return _path != nullptr ? _path : ""; } ///< never null
    std::string getString() const;
    std::string_view getView() const noexcept;
    /// So that a path goes wherever a text is taken, into a log statement too.
    operator std::string_view() const noexcept { return getView(); } // NOLINT: see above
    /// What the standard library opens the same file with: on a POSIX host "C:\tmp\x" is "/tmp/x".
    std::filesystem::path getStdPath() const;
    /// The full path as a "file:" address, which terminals and editors open on a click. Raises
    /// `ExSysErrorWindows` as `getBaseName` does.
    std::string getUri() const;

    bool isEmpty() const noexcept { return *getChars() == '\0'; }
    /// Whether the path does not depend on the current drive and directory: "C:..." or "\\...", of
    /// at least 3 characters. "C:x" counts as absolute, "\x" and "/x" as relative.
    bool isAbsolute() const noexcept;
    bool isRelative() const noexcept { return !isAbsolute(); }

    std::ostream& dump(std::ostream& stream) const; ///< writes the text

    /// Negative, zero or positive: byte by byte, neither case nor separators are made alike.
    /// Raises `ExInternalError` for a null pointer.
    static int compare(const char* lhs, const char* rhs);

    static const char* getSeparator() noexcept; ///< "\"

    /// Appends a path of one or more elements, after a separator unless this path is empty or ends
    /// in one. Raises `OsFileEx::ExIllegalPathConcat` if the path is absolute.
    OsFilePath& operator+=(const OsFilePath& path);
    /// Appends one element. Raises `OsFileEx::ExSeparatorNotAllowed` if the text holds a backslash,
    /// and `ExInternalError` for a null pointer.
    OsFilePath& operator+=(const char* path);
    OsFilePath operator+(const OsFilePath& path) const;
    OsFilePath operator+(const char* path) const;

    // The following look at the full path, which depends on the current directory if this path is
    // relative. They raise `ExSysErrorWindows` if the system has no full path for the text, as for
    // an empty one.

    OsFilePath getFullPath() const; ///< absolute, without ".", ".." and doubled separators
    OsFilePath getBaseName() const; ///< the last element; empty if the path ends in a separator
    /// The full path less its last element, without a separator at the end: of "C:\file" it is
    /// "C:". The directory of "." is the current directory, and of ".." that one's parent.
    OsFilePath getDirectoryName() const;
    /// What stands behind the last dot of the base name: of ".rc" it is "rc"; "" if there is none.
    ArrayPtrRet<char> getExtension() const;

    static OsFilePath getRootDir(); ///< of the current drive: "C:\"
    static OsFilePath getTempDir(); ///< as the system gives it, a separator at the end
    /// The environment's HOME with backslashes. Raises `OsFileEx::ExHomeNotDefined` if it is not
    /// set.
    static OsFilePath getHomeDir();

private:
    static bool isAbsolute(const char* path) noexcept;
    static char* getRootDir(char* buffer);
    static char* getTempDir(char* buffer);
    static char* getHomeDir(char* buffer);

    enum class Adopt
    {
        array
    };
    OsFilePath(Adopt, char* path) noexcept
        : _path(path)
    {
    }

    void assign(std::string_view path);
    void concatenate(const char* element);
    static char* join(const char* path, const char* element);

    char* _path; ///< owned; null only after a move
};

/// The byte-wise order of `compare`.
inline bool operator==(const OsFilePath& lhs, const OsFilePath& rhs) noexcept
{
    return lhs.getView() == rhs.getView();
}
inline bool operator!=(const OsFilePath& lhs, const OsFilePath& rhs) noexcept
{
    return lhs.getView() != rhs.getView();
}
inline bool operator<(const OsFilePath& lhs, const OsFilePath& rhs) noexcept
{
    return lhs.getView() < rhs.getView();
}
inline bool operator<=(const OsFilePath& lhs, const OsFilePath& rhs) noexcept
{
    return lhs.getView() <= rhs.getView();
}
inline bool operator>(const OsFilePath& lhs, const OsFilePath& rhs) noexcept
{
    return lhs.getView() > rhs.getView();
}
inline bool operator>=(const OsFilePath& lhs, const OsFilePath& rhs) noexcept
{
    return lhs.getView() >= rhs.getView();
}

KR_BASE_API std::ostream& operator<<(std::ostream& stream, const OsFilePath& path);

} // namespace Kr

template <>
struct std::hash<Kr::OsFilePath>
{
    std::size_t operator()(const Kr::OsFilePath& path) const noexcept
    {
        return std::hash<std::string_view>()(path.getView());
    }
};

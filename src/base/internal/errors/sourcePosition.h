#pragma once

/// @file
/// The position of a raise, as the library reports it.
/// @code
/// Kr::raise<Kr::ExInternalError>(KR_HERE, "The scene is empty."); // file and line of this one
/// @endcode
/// A build that knows the root of its own sources names it, so that positions are short and an
/// editor opens them from there: `-DKR_SOURCE_ROOT='"/home/me/viewer/"'`, or with CMake
/// `target_compile_definitions(viewer PRIVATE KR_SOURCE_ROOT="${PROJECT_SOURCE_DIR}/")`.

#include <cstddef>

namespace Kr
{

/// The name under which a source file is reported, whatever machine and folder it was built in:
///
/// | file                                              | reported as                              |
/// |---------------------------------------------------|------------------------------------------|
/// | the library's own, in the tree or installed       | `src/base/inInitMgr`; the extension of   |
/// | (in a folder `src/base` or `libKRbase/base`)      | `.imp` and `.inline` files is kept       |
/// | below the root that the build names               | its path from there: `ui/window.cpp`     |
/// | below a folder `src`                              | its path from there: `src/ui/window.cpp` |
/// | any other                                         | as the compiler has it, less leading     |
/// |                                                   | `./` and `../`                           |
template <std::size_t Size>
class SourceName
{
public:
    /// @param root the caller's own source root; empty if it is not known
    explicit constexpr SourceName(const char (&path)[Size], const char* root = "")
    {
        constexpr std::size_t length = Size - 1;
        const std::size_t installed = afterFolder(path, length, "libKRbase/base");
        const std::size_t inTree = afterFolder(path, length, "src/base");
        const std::size_t own = inTree != length ? inTree : installed;
        if (own != length)
            copyOwn(path + own, length - own);
        else
            copyOther(path, length, afterRoot(path, root));
    }

    constexpr const char* getChars() const { return _text; }

private:
    static constexpr bool isSeparator(char c) { return c == '/' || c == '\\'; }
    static constexpr bool isSame(char left, char right)
    {
        return left == right || (isSeparator(left) && isSeparator(right));
    }

    /// Whether the text begins with that one; the separators are alike.
    static constexpr bool startsWith(const char* text, const char* begin)
    {
        for (; *begin != '\0' && isSame(*text, *begin); ++text)
            ++begin;
        return *begin == '\0';
    }

    /// The index after the last folder of that name in the path, or `length` if there is none.
    static constexpr std::size_t afterFolder(const char* path, std::size_t length, const char* name)
    {
        std::size_t nameLength = 0;
        while (name[nameLength] != '\0')
            ++nameLength;
        for (std::size_t start = length; start-- > 0;)
            if ((start == 0 || isSeparator(path[start - 1])) && startsWith(path + start, name) &&
                isSeparator(path[start + nameLength]))
                return start + nameLength + 1;
        return length;
    }

    /// The index after the root and its separator; 0 if the path is not below it.
    static constexpr std::size_t afterRoot(const char* path, const char* root)
    {
        std::size_t length = 0;
        while (root[length] != '\0')
            ++length;
        if (length == 0 || !startsWith(path, root))
            return 0;
        if (isSeparator(root[length - 1]))
            return length;
        return isSeparator(path[length]) ? length + 1 : 0;
    }

    /// The index after the steps upwards that a path from the build folder begins with.
    static constexpr std::size_t afterDots(const char* path, std::size_t start)
    {
        std::size_t from = start;
        while (startsWith(path + from, "./") || startsWith(path + from, "../"))
            from += path[from + 1] == '.' ? 3 : 2;
        return from;
    }

    constexpr void append(const char* text, std::size_t length)
    {
        for (std::size_t i = 0; i < length; ++i)
            _text[_length++] = text[i] == '\\' ? '/' : text[i];
    }

    constexpr void copyOwn(const char* name, std::size_t length)
    {
        append("src/base/", 9);
        append(name, length);
        if (!cutEnding(".cpp"))
            cutEnding(".h");
    }

    constexpr void copyOther(const char* path, std::size_t length, std::size_t afterRoot)
    {
        const std::size_t afterSource = afterFolder(path, length, "src");
        const bool isBelowSource = afterRoot == 0 && afterSource != length;
        if (isBelowSource)
            append("src/", 4);
        const std::size_t from = isBelowSource ? afterSource : afterDots(path, afterRoot);
        append(path + from, length - from);
    }

    /// Cuts that ending off the name; false if it has another.
    constexpr bool cutEnding(const char* ending)
    {
        std::size_t size = 0;
        while (ending[size] != '\0')
            ++size;
        if (_length < size || !startsWith(_text + _length - size, ending))
            return false;
        _length -= size;
        for (std::size_t i = 0; i < size; ++i)
            _text[_length + i] = '\0';
        return true;
    }

    char _text[Size + 9] = {}; // an installed header's name gains "src/"
    std::size_t _length = 0;
};

/// The name of one place. A local constant would do, but in templates one compiler puts it into
/// sections of different kinds, which cannot be linked.
template <class Path>
struct SourceNameOf
{
    static constexpr SourceName<sizeof(Path::get())> value{Path::get(), Path::getRoot()};
};

} // namespace Kr

#ifndef KR_SOURCE_ROOT
#define KR_SOURCE_ROOT ""
#endif

/// The position of this line, as the two arguments (file, line) that every exception begins with:
/// `Kr::raise<Kr::InEx::ExDependencyCycle>(KR_HERE)`. The file's name is made by the compiler and
/// lives as long as the module.
#define KR_HERE KR_HERE_AT(__LINE__)

/// The same with a line of the caller's, for the raises whose line number is part of the interface.
#define KR_HERE_AT(line)                                                                           \
    []() noexcept                                                                                  \
    {                                                                                              \
        struct KrPath                                                                              \
        {                                                                                          \
            static constexpr auto& get() noexcept { return __FILE__; }                             \
            static constexpr auto& getRoot() noexcept { return KR_SOURCE_ROOT; }                   \
        };                                                                                         \
        return ::Kr::SourceNameOf<KrPath>::value.getChars();                                       \
    }(),                                                                                           \
        (line)

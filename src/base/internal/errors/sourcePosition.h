#pragma once

/// @file
/// The position of a raise, as the library reports it.
/// @code
/// Kr::raise<Kr::ExInternalError>(KR_HERE, "The scene is empty."); // file and line of this one
/// @endcode

#include <cstddef>

namespace Kr
{

/// The name under which a source file is reported: its path in the source tree, without its
/// extension for `.cpp` and `.h` files and with it for `.imp` and `.inline` files, whatever machine
/// and folder it was built in.
///
/// A path that holds a `src/` folder is reported from that folder on (`src/base/inInitMgr`); an
/// installed header of the library is reported under the name that it has in the tree. Any other
/// path is reported as the compiler gave it, less the extension.
template <std::size_t Size>
class SourceName
{
public:
    explicit constexpr SourceName(const char (&path)[Size])
    {
        const std::size_t length = Size - 1;
        const std::size_t installed = lastFolder(path, length, "libKRbase");
        std::size_t from = installed != length ? installed : lastFolder(path, length, "src");
        std::size_t to = 0;
        if (installed != length || from != length)
            for (const char* root = "src/"; *root != '\0'; ++root)
                _text[to++] = *root;
        else
            from = 0;
        while (from < length)
        {
            _text[to++] = path[from] == '\\' ? '/' : path[from];
            ++from;
        }
        _text[to - extensionLength(to)] = '\0';
    }

    constexpr const char* getChars() const { return _text; }

private:
    static constexpr bool isSeparator(char c) { return c == '/' || c == '\\'; }

    /// The index after the last folder of that name in the path, or `length` if there is none.
    static constexpr std::size_t lastFolder(const char* path, std::size_t length, const char* name)
    {
        std::size_t nameLength = 0;
        while (name[nameLength] != '\0')
            ++nameLength;
        for (std::size_t start = length; start-- > 0;)
        {
            if (start != 0 && !isSeparator(path[start - 1]))
                continue;
            std::size_t i = 0;
            while (i < nameLength && start + i < length && path[start + i] == name[i])
                ++i;
            if (i == nameLength && start + i < length && isSeparator(path[start + i]))
                return start + i + 1;
        }
        return length;
    }

    constexpr bool endsWith(std::size_t length, const char* ending, std::size_t size) const
    {
        if (length < size)
            return false;
        for (std::size_t i = 0; i < size; ++i)
            if (_text[length - size + i] != ending[i])
                return false;
        return true;
    }

    constexpr std::size_t extensionLength(std::size_t length) const
    {
        if (endsWith(length, ".cpp", 4))
            return 4;
        return endsWith(length, ".h", 2) ? 2 : 0;
    }

    char _text[Size + 4] = {}; // an installed header's name gains "src/"
};

} // namespace Kr

/// The position of this line, as the two arguments (file, line) that every exception begins with:
/// `Kr::raise<Kr::InEx::ExDependencyCycle>(KR_HERE)`. The file's name is made by the compiler and
/// lives as long as the module.
#define KR_HERE KR_HERE_AT(__LINE__)

/// The same with a line of the caller's, for the raises whose line number is part of the interface.
#define KR_HERE_AT(line)                                                                           \
    []() noexcept                                                                                  \
    {                                                                                              \
        static constexpr ::Kr::SourceName krSourceName(__FILE__);                                  \
        return krSourceName.getChars();                                                            \
    }(),                                                                                           \
        (line)

#pragma once

/// @file
/// What the tests of the log's files share: a folder that goes away, and readers of files.

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace LogTest
{

/// A new folder among the temporary files, removed with everything in it at the end.
class Folder
{
public:
    Folder()
        : _path(std::filesystem::temp_directory_path() /
                ("krbase-log-" + std::to_string(std::random_device()())))
    {
        std::filesystem::create_directories(_path);
    }

    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    ~Folder()
    {
        std::error_code error;
        std::filesystem::remove_all(_path, error);
    }

    std::string operator/(const std::string& name) const { return (_path / name).string(); }
    std::string getPath() const { return _path.string(); }

private:
    const std::filesystem::path _path;
};

inline std::string readFile(const std::string& path)
{
    std::ifstream stream(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

/// The lines of a file; one that lacks its line feed ends in "<cut>".
inline std::vector<std::string> readLines(const std::string& path)
{
    std::istringstream stream(readFile(path));
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(stream.eof() ? line + "<cut>" : line);
    return lines;
}

/// The text of a line with its four columns before it.
inline std::string textOf(const std::string& line)
{
    constexpr std::size_t column = 29 + 16 + 16 + 14;
    return line.size() < column ? "" : line.substr(column);
}

/// Whether the text is one JSON value; says nothing about its meaning.
class JsonCheck
{
public:
    static bool isValue(const std::string& text)
    {
        JsonCheck check(text);
        return check.value() && check.atEnd();
    }

private:
    explicit JsonCheck(const std::string& text)
        : _at(text.data())
        , _end(text.data() + text.size())
    {
    }

    void blanks()
    {
        while (_at != _end && std::isspace(static_cast<unsigned char>(*_at)) != 0)
            ++_at;
    }

    bool atEnd()
    {
        blanks();
        return _at == _end;
    }

    bool take(char c)
    {
        blanks();
        if (_at == _end || *_at != c)
            return false;
        ++_at;
        return true;
    }

    bool string()
    {
        if (!take('"'))
            return false;
        for (; _at != _end && *_at != '"'; ++_at)
        {
            if (static_cast<unsigned char>(*_at) < 0x20)
                return false;
            if (*_at == '\\' && ++_at == _end)
                return false;
        }
        return take('"');
    }

    bool sequence(char close, bool isObject)
    {
        if (take(close))
            return true;
        do
            if ((isObject && (!string() || !take(':'))) || !value())
                return false;
        while (take(','));
        return take(close);
    }

    bool number()
    {
        const char* const start = _at;
        _at = std::find_if_not(_at, _end,
                               [](char c) {
                                   return std::isdigit(static_cast<unsigned char>(c)) != 0 ||
                                          c == '-' || c == '.';
                               });
        return _at != start;
    }

    bool value()
    {
        blanks();
        if (take('{'))
            return sequence('}', true);
        if (take('['))
            return sequence(']', false);
        return _at != _end && *_at == '"' ? string() : number();
    }

    const char* _at;
    const char* const _end;
};

} // namespace LogTest

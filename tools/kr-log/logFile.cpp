#include "logFile.h"

#include <base/osFile.h>
#include <base/osFilePath.h>

#include <algorithm>
#include <fstream>

namespace KrLog
{

namespace
{

constexpr std::size_t pieceSize = 256 * 1024;
constexpr std::size_t beginningSize = 256; // a time stamp and more

/// Reads up to so many bytes from there on; none of a file that has just been removed.
std::string readAt(const std::string& name, std::uint64_t offset, std::size_t size)
{
    std::ifstream file(Kr::OsFilePath(name).getStdPath(), std::ios::binary);
    file.seekg(static_cast<std::streamoff>(offset));
    std::string text(size, '\0');
    file.read(text.data(), static_cast<std::streamsize>(size));
    text.resize(static_cast<std::size_t>(std::max<std::streamsize>(file.gcount(), 0)));
    return text;
}

bool isFile(const std::string& name)
{
    const Kr::OsFile file((Kr::OsFilePath(name)));
    return file.exists() && file.isFile();
}

bool beginsAlike(const std::string& a, const std::string& b)
{
    const std::size_t size = std::min(a.size(), b.size());
    return size != 0 && a.compare(0, size, b, 0, size) == 0;
}

} // namespace

LogFile::LogFile(const std::string& path, bool withRotated)
    : _path(path)
    , _skipsRotated(!withRotated)
{
}

std::string LogFile::getName(int number) const
{
    return number == 0 ? _path : _path + '.' + std::to_string(number);
}

/// How many files there are, the one of the log's own name included.
int LogFile::getCount() const
{
    int number = 1;
    while (isFile(getName(number)))
        ++number;
    return number;
}

/// The number of the file that is being read, or `none` if it is gone.
int LogFile::locate() const
{
    for (int number = 0; number < getCount(); ++number)
        if (isFile(getName(number)) &&
            beginsAlike(readAt(getName(number), 0, beginningSize), _beginning) &&
            Kr::OsFile(Kr::OsFilePath(getName(number))).getFullSize() >= _offset)
            return number;
    return none;
}

/// The number of the oldest file of which nothing has been read.
int LogFile::findUnread() const
{
    for (int number = getCount() - 1; number > 0; --number)
    {
        const std::string beginning = readAt(getName(number), 0, beginningSize);
        const auto isSame = [&](const std::string& each) { return beginsAlike(each, beginning); };
        if (std::none_of(_finished.begin(), _finished.end(), isSame))
            return number;
    }
    return 0;
}

bool LogFile::readPiece(int number)
{
    const std::string name = getName(number);
    _beginning = isFile(name) ? readAt(name, 0, beginningSize) : std::string();
    const std::string piece = _beginning.empty() ? std::string() : readAt(name, _offset, pieceSize);
    _offset += piece.size();
    _piece += piece;
    return !piece.empty();
}

/// Reads on, in the next file if this one has been renamed and read to its end.
bool LogFile::readMore()
{
    _piece.erase(0, _at);
    _at = 0;
    int number = _beginning.empty() ? none : locate();
    if (number == none)
    {
        number = _skipsRotated ? 0 : findUnread();
        _offset = 0;
    }
    _skipsRotated = false;
    for (; !readPiece(number); --number, _offset = 0)
    {
        if (number == 0)
            return false;
        _finished.push_back(_beginning);
        if (!_piece.empty() && _piece.back() != '\n')
            _piece += '\n'; // no file goes on in another one
    }
    return true;
}

bool LogFile::takeLine(std::string& line)
{
    for (;;)
    {
        const std::size_t end = _piece.find('\n', _at);
        if (end != std::string::npos)
        {
            line.assign(_piece, _at, end - _at);
            _at = end + 1;
            return true;
        }
        if (!readMore())
            return false;
    }
}

bool LogFile::takeRest(std::string& line)
{
    line = _piece.substr(_at);
    _at = _piece.size();
    return !line.empty();
}

} // namespace KrLog

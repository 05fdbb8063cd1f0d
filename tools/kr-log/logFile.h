#pragma once

/// @file
/// One log with the files that it was rotated into, the oldest first, read line by line, also while
/// it is written and rotated.
///
/// A file is known by how it begins, so that it is found again under the name that a rotation gave
/// it. It is open only while a piece of it is read: nothing keeps its writers from renaming it.

#include <cstdint>
#include <string>
#include <vector>

namespace KrLog
{

class LogFile
{
public:
    /// @param withRotated whether to begin with `path.1`, `path.2`, ...
    LogFile(const std::string& path, bool withRotated);

    /// Takes the next whole line; false at the end for now, also where there is no file yet.
    bool takeLine(std::string& line);

    /// Takes what stands behind the last line feed; false if there is nothing.
    bool takeRest(std::string& line);

private:
    static constexpr int none = -1;

    std::string getName(int number) const;
    int getCount() const;
    int locate() const;
    int findUnread() const;
    bool readMore();
    bool readPiece(int number);

    const std::string _path;
    std::string _beginning;    ///< of the file that is being read; empty before it is known
    std::uint64_t _offset = 0; ///< how much of it was read
    std::vector<std::string> _finished; ///< how the files began that were read to their end
    bool _skipsRotated;
    std::string _piece;  ///< what was read
    std::size_t _at = 0; ///< how much of that was taken
};

} // namespace KrLog

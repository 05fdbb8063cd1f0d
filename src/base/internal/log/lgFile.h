#pragma once

/// @file
/// Internal to the library: what lines of the log are appended to.
///
/// A file of the system is shared with other processes, or one process's alone. What is appended to
/// it arrives whole or not at all: a line that the disk had no room for is taken back. It is opened
/// by the first text, with the folders above it, and opened again when somebody has moved or
/// removed it.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace Kr
{

struct LgFileSettings
{
    std::string path;
    std::string privateFolder; ///< one above the file that is for its user alone; empty: none
    std::uint64_t maxSize = 0; ///< in bytes; a file that would grow beyond is rotated; 0: no limit
    int keptFiles = 1;    ///< how many rotated files stay, `path.1` being the latest; at least 1
    bool isLocked = true; ///< under the lock that is shared between processes
    bool isExclusive = false; ///< made anew, and no other process may write to it
};

/// What an output writes to. Tests put failing ones in its place.
class LgFile
{
public:
    virtual ~LgFile();

    /// Appends whole lines. Returns how many of the bytes are there now: all of them, or whole
    /// lines, or none. A stream may have taken a part of a line and takes the rest next time.
    virtual std::size_t append(const char* text, std::size_t size) noexcept = 0;

    /// Puts the text into the place of so many bytes, at most 64, at the end of an exclusive file;
    /// false, with the file as it was, if that fails.
    virtual bool replaceEnd(std::size_t removed, const char* text, std::size_t size) noexcept;

    /// Of how many bytes of the last text it is not known yet whether they are there. Until that is
    /// 0, the next call must begin with them, and tells of them alone.
    virtual std::size_t getPending() const noexcept;

    /// Whether the next call may never come back, and keep the caller for ever.
    virtual bool isFar() const noexcept = 0;

    /// Returns when what was appended is on the disk.
    virtual bool sync() noexcept = 0;

    /// Called now and then while nothing is appended: lets go of what is not needed any more.
    virtual void rest() noexcept;

    /// Why the last operation failed, in a sentence.
    virtual std::string getProblem() const = 0;

    /// What those who read the file should be told, once; empty: nothing.
    virtual std::string takeNews();

    /// The file of the system at that path.
    static std::unique_ptr<LgFile> create(const LgFileSettings& settings);
};

} // namespace Kr

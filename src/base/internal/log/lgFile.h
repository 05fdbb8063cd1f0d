#pragma once

/// @file
/// Internal to the library: a file that lines are appended to, by this process and by others.
///
/// What is appended arrives whole or not at all: a line that the disk had no room for is taken
/// back. The file is opened by the first text, with the folders above it, and opened again when
/// somebody has moved or removed it.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace Kr
{

struct LgFileSettings
{
    std::string path;
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

    /// Appends whole lines; false, with the file as it was, if that fails.
    virtual bool append(const char* text, std::size_t size) noexcept = 0;

    /// Takes so many bytes off the end of an exclusive file; false if that fails.
    virtual bool removeEnd(std::size_t size) noexcept;

    /// Returns when what was appended is on the disk.
    virtual bool sync() noexcept = 0;

    /// Why the last operation failed, in the system's words.
    virtual std::string getProblem() const = 0;

    /// The file of the system at that path.
    static std::unique_ptr<LgFile> create(const LgFileSettings& settings);
};

} // namespace Kr

#pragma once

/// @file
/// Internal to the library: one file that several processes append to and rotate, each under the
/// lock.
///
/// Without the lock nothing is renamed and nothing is cut off. Where the lock cannot be had at all,
/// a text is still appended, which most file systems do in one piece, and the file grows beyond its
/// limit.

#include <base/internal/log/lgFile.h>
#include <base/internal/log/lgInterProcessLock.h>
#include <base/internal/log/lgProblem.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

class KrLogFile;

namespace Kr
{

class LgAppendedFile
{
public:
    enum class Outcome
    {
        done,
        busy, ///< somebody else holds the lock, or the file
        failed
    };

    explicit LgAppendedFile(const LgFileSettings& settings);
    LgAppendedFile(const LgAppendedFile&) = delete;
    LgAppendedFile& operator=(const LgAppendedFile&) = delete;
    ~LgAppendedFile();

    const std::string& getPath() const { return _settings.path; }

    /// Appends whole lines.
    /// @param patience how long the lock may keep the caller waiting
    /// @param taken receives how many bytes the file has of them now; see `LgFile::append`
    Outcome append(const char* text, std::size_t size, std::chrono::milliseconds patience,
                   std::size_t& taken);

    /// Returns when everything since the last call is on the disk, also what was rotated, and the
    /// names of the files.
    bool sync() noexcept;

    /// See `LgFile`. Before the file is open that is not known.
    bool isFar() const noexcept;

    /// Lets go of a file that has been moved away.
    void rest();

    /// Removes what only a writer needs.
    void leave() noexcept;

    const LgProblem& getProblem() const { return _problem; }

private:
    bool open();
    bool isCurrent() const;
    bool hasRoom(std::size_t size) const;
    bool rotate() const;
    std::string getRotatedPath(int number) const;
    void retire();
    std::size_t write(const char* text, std::size_t size, bool isAlone);
    std::size_t writeStream(const char* text, std::size_t size);
    bool endHalfLine();
    Outcome finish(std::size_t taken, std::size_t size);
    Outcome failed();

    const LgFileSettings _settings;
    const std::string _folder;
    LgInterProcessLock _lock;
    std::unique_ptr<KrLogFile> _file;
    std::vector<std::unique_ptr<KrLogFile>> _retired; ///< moved away, and not on the disk yet
    LgProblem _problem;
    std::int64_t _knownEnd = 0; ///< the size at which this process's last line ended
    bool _isWritten = false;    ///< since the last sync
    bool _hasNewNames = false;  ///< since then, too
    bool _isStuck = false;      ///< a stream that took nothing last time
};

} // namespace Kr

#pragma once

/// @file
/// Replaces a file as a whole: whoever opens it finds the old content or the new, never a part.
/// @code
/// Kr::OsSafeWriter writer("scene.txt");
/// const std::string text = "camera 0 0 5\n";
/// writer.write(text.data(), text.size());
/// writer.commit();
/// @endcode
/// The content goes into a temporary file beside the target, which `commit` puts in the target's
/// place in one step. Without a `commit` (an exception, the end of the program) the target stays as
/// it was and the temporary file is removed. Only a killed process leaves it behind, as
/// "scene.txt.~unsaved0" or with a higher number; the next writer of the same target removes it.
///
/// The new file has the permissions of the one that it replaces: on Windows its access list and
/// whether it is hidden, elsewhere its permission bits, owner and group as far as the process may
/// set them. Several writers may work on one target; the last to commit wins.
///
/// Pitfalls:
/// - The target becomes a new file, so other hard links to the old one keep the old content, and a
///   symbolic link is replaced itself.
/// - A file cannot be replaced while somebody holds it open (on a POSIX host: through this
///   library). `commit` tries again for as long as its patience lasts, by default a second.

#include <base/krBaseApi.h>
#include <base/osFilePath.h>
#include <base/osFileWriter.h>

#include <memory>

namespace Kr
{

class KR_BASE_API OsSafeWriter
{
public:
    /// Opens the temporary file. Raises `OsFileEx::ExNullFilePath` for an empty path,
    /// `OsFileEx::ExPathNotWritable` if the target is a file that cannot be written or no file at
    /// all, and `ExSysErrorWindows` if no file can be made beside it.
    explicit OsSafeWriter(const OsFilePath& target);
    OsSafeWriter(const OsSafeWriter&) = delete;
    OsSafeWriter& operator=(const OsSafeWriter&) = delete;
    ~OsSafeWriter();

    /// Writes all of it, or raises `ExSysErrorWindows`.
    void write(const void* buffer, unsigned long count);

    /// Puts the content, which is on the disk by then, in the target's place. When it raises
    /// `ExSysErrorWindows`, the target is as it was and `commit` can be called again. Nothing can
    /// be written after the first call; after a success every operation raises `ExSysErrorANSI`.
    void commit();

    const OsFilePath& getPath() const noexcept; ///< the target

    /// For how long `commit` waits for others who hold the target, in seconds; returns the previous
    /// value.
    double setPatience(double seconds) noexcept;

private:
    enum class State
    {
        Open,
        Complete, ///< closed, with everything in the temporary file
        Committed
    };

    class Claim;

    void checkState(State last) const;
    bool replace() const;

    OsFilePath _path;
    double _patience;
    State _state;
    std::unique_ptr<Claim> _claim; ///< on the temporary file
    OsFileWriter _writer;
};

} // namespace Kr

#pragma once

/// @file
/// An open file that is written: every operation is one call of the system, nothing is buffered.
/// @code
/// Kr::OsFileWriter writer("scene.bin", Kr::OsFileTypes::Permissions(3, 3, 0), false);
/// const std::string text = "version 2\n";
/// if (writer.write(text.data(), text.size()) != text.size())
///     Kr::raise<Kr::ExInternalError>(KR_HERE, "The disk is full.");
/// writer.close(); // tells of a failure, which the destructor cannot
/// @endcode
/// Others may read and write the file meanwhile. An operation on a closed writer raises
/// `ExSysErrorANSI`, one that the system refuses `ExSysErrorWindows`. Pitfalls:
/// - A writer empties the file when it opens it. `OsSafeWriter` keeps the old content until the new
///   one is complete.
/// - `seek` reports failure whenever the thread's last system error is not zero after it; see
///   `OsFileReader`. Opening a file that exists leaves such an error ("already exists").
///
/// Use an object from one thread at a time.

#include <base/krBaseApi.h>
#include <base/osFilePath.h>
#include <base/osFileTypes.h>

namespace Kr
{

class OsFile;

class KR_BASE_API OsFileWriter
{
public:
    /// Creates the file, or empties the one that is there; with `failIfExists` set that is an error
    /// of the system instead. Raises `OsFileEx::ExNullFilePath` for an empty path.
    OsFileWriter(const OsFilePath& path, const OsFileTypes::Permissions& permissions,
                 bool failIfExists);
    OsFileWriter(const OsFile& file, const OsFileTypes::Permissions& permissions,
                 bool failIfExists);
    OsFileWriter(const OsFileWriter&) = delete;
    OsFileWriter& operator=(const OsFileWriter&) = delete;
    ~OsFileWriter(); ///< closes the file if it is open

    /// Writes and returns how many bytes could be: fewer than `count` if the system reports the end
    /// of the medium. A disk that is full meanwhile raises as any other failure does.
    unsigned long write(const void* buffer, unsigned long count);
    /// Moves by an offset of 32 bits, a wider one raises; returns the low 32 bits of the new
    /// position.
    unsigned long seek(long offset, OsFileTypes::SeekMode mode);
    /// Makes the file exactly that many bytes long, growing or cutting it, and moves to its end.
    /// Room for what it grows by is taken from the disk. A failure leaves size and position.
    void reserve(unsigned long size);
    void flush(); ///< waits until what was written is on the disk
    void close();

    const OsFilePath& getPath() const noexcept;

private:
    void openPath(bool failIfExists);
    void checkOpen() const;

    // The system's part (osFileWriterWindows)
    OsFileTypes::Handle performOpen(bool failIfExists) const;
    unsigned long performWrite(const void* buffer, unsigned long count) const;
    unsigned long performSeek(long offset, OsFileTypes::SeekMode mode) const;
    void performReserve(unsigned long size) const;
    void performFlush() const;
    void performClose();

    OsFilePath _path;
    OsFileTypes::Handle _handle;
};

} // namespace Kr

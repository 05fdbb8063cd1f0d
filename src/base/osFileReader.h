#pragma once

/// @file
/// An open file that is read: every operation is one call of the system, nothing is buffered.
/// @code
/// Kr::OsFileReader reader("scene.bin");
/// std::vector<char> header(512);
/// header.resize(reader.read(header.data(), header.size())); // fewer at the end of the file
/// reader.seek(-4, Kr::OsFileTypes::SeekEnd);
/// @endcode
/// Others may read and write the file meanwhile. An operation on a closed reader raises
/// `ExSysErrorANSI`, one that the system refuses `ExSysErrorWindows`.
///
/// Pitfall: `seek` reports failure whenever the thread's last system error is not zero after it,
/// also one that an earlier call of any kind has left. On purpose: a failure that nobody has looked
/// at is not passed over. Use an object from one thread at a time.

#include <base/krBaseApi.h>
#include <base/osFilePath.h>
#include <base/osFileTypes.h>

namespace Kr
{

class OsFile;

class KR_BASE_API OsFileReader
{
public:
    /// Opens the file, which must exist. Raises `OsFileEx::ExNullFilePath` for an empty path.
    explicit OsFileReader(const OsFilePath& path);
    explicit OsFileReader(const OsFile& file);
    OsFileReader(const OsFileReader&) = delete;
    OsFileReader& operator=(const OsFileReader&) = delete;
    ~OsFileReader(); ///< closes the file if it is open

    /// Reads up to `count` bytes and returns how many there were: 0 at the end of the file.
    unsigned long read(void* buffer, unsigned long count);
    /// Moves by an offset of 32 bits, a wider one raises; returns the low 32 bits of the new
    /// position.
    unsigned long seek(long offset, OsFileTypes::SeekMode mode);
    void close();

    const OsFilePath& getPath() const noexcept;

private:
    void openPath();
    void checkOpen() const;

    // The system's part (osFileReaderWindows)
    OsFileTypes::Handle performOpen() const;
    unsigned long performRead(void* buffer, unsigned long count) const;
    unsigned long performSeek(long offset, OsFileTypes::SeekMode mode) const;
    void performClose();

    OsFilePath _path;
    OsFileTypes::Handle _handle;
};

} // namespace Kr

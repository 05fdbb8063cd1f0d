#include <base/osFileWriter.h>

#include <base/exSysError.h>
#include <base/internal/os/osFsUtilsWindows.h>
#include <base/osFile.h>
#include <base/osFileEx.h>
#include <base/raise.h>

#include <cerrno>

namespace Kr
{

OsFileWriter::OsFileWriter(const OsFilePath& path, const OsFileTypes::Permissions&,
                           bool failIfExists)
    : _path(path)
    , _handle(OsFileTypes::invalidHandle)
{
    openPath(failIfExists);
}

OsFileWriter::OsFileWriter(const OsFile& file, const OsFileTypes::Permissions& permissions,
                           bool failIfExists)
    : OsFileWriter(file.getPath(), permissions, failIfExists)
{
}

OsFileWriter::~OsFileWriter()
{
    if (_handle != OsFileTypes::invalidHandle)
        OsFsUtilsWindows::close(_handle);
}

void OsFileWriter::openPath(bool failIfExists)
{
    if (_path.isEmpty())
        raise<OsFileEx::ExNullFilePath>(KR_HERE);
    _handle = performOpen(failIfExists);
}

void OsFileWriter::checkOpen() const
{
    if (_handle != OsFileTypes::invalidHandle)
        return;
    errno = EBADF;
    raise<ExSysErrorANSI>(KR_HERE);
}

unsigned long OsFileWriter::write(const void* buffer, unsigned long count)
{
    checkOpen();
    return performWrite(buffer, count);
}

unsigned long OsFileWriter::seek(long offset, OsFileTypes::SeekMode mode)
{
    checkOpen();
    return performSeek(offset, mode);
}

void OsFileWriter::reserve(unsigned long size)
{
    checkOpen();
    performReserve(size);
}

void OsFileWriter::flush()
{
    checkOpen();
    performFlush();
}

void OsFileWriter::close()
{
    checkOpen();
    performClose();
}

const OsFilePath& OsFileWriter::getPath() const noexcept
{
    return _path;
}

} // namespace Kr

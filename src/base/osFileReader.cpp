#include <base/osFileReader.h>

#include <base/exSysError.h>
#include <base/internal/os/osFsUtilsWindows.h>
#include <base/osFile.h>
#include <base/osFileEx.h>
#include <base/raise.h>

#include <cerrno>

namespace Kr
{

OsFileReader::OsFileReader(const OsFilePath& path)
    : _path(path)
    , _handle(OsFileTypes::invalidHandle)
{
    openPath();
}

OsFileReader::OsFileReader(const OsFile& file)
    : OsFileReader(file.getPath())
{
}

OsFileReader::~OsFileReader()
{
    if (_handle != OsFileTypes::invalidHandle)
        OsFsUtilsWindows::close(_handle);
}

void OsFileReader::openPath()
{
    if (_path.isEmpty())
        raise<OsFileEx::ExNullFilePath>(KR_HERE);
    _handle = performOpen();
}

void OsFileReader::checkOpen() const
{
    if (_handle != OsFileTypes::invalidHandle)
        return;
    errno = EBADF;
    raise<ExSysErrorANSI>(KR_HERE);
}

unsigned long OsFileReader::read(void* buffer, unsigned long count)
{
    checkOpen();
    return performRead(buffer, count);
}

unsigned long OsFileReader::seek(long offset, OsFileTypes::SeekMode mode)
{
    checkOpen();
    return performSeek(offset, mode);
}

void OsFileReader::close()
{
    checkOpen();
    performClose();
}

const OsFilePath& OsFileReader::getPath() const noexcept
{
    return _path;
}

} // namespace Kr

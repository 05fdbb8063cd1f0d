#include <base/osFileReader.h>

#include <base/exSysError.h>
#include <base/internal/os/osFsUtilsWindows.h>
#include <base/raise.h>
#include <platform/platform.h>

#include <algorithm>
#include <limits>
#include <utility>

namespace Kr
{

OsFileTypes::Handle OsFileReader::performOpen() const
{
    const OsFileTypes::Handle handle =
        OsFsUtilsWindows::open(_path, OsFsUtilsWindows::ReadAccess,
                               OsFsUtilsWindows::SharedReadWrite, OsFsUtilsWindows::OpenExisting);
    if (handle == OsFileTypes::invalidHandle)
        raise<ExSysErrorWindows>(KR_HERE);
    return handle;
}

unsigned long OsFileReader::performRead(void* buffer, unsigned long count) const
{
    constexpr unsigned long most = std::numeric_limits<DWORD>::max();
    DWORD read = 0;
    const BOOL done =
        ReadFile(reinterpret_cast<HANDLE>(_handle), buffer, // NOLINT: a handle is a number here
                 static_cast<DWORD>(std::min(count, most)), &read, nullptr);
    if (done == 0 && GetLastError() != ERROR_HANDLE_EOF)
        raise<ExSysErrorWindows>(KR_HERE);
    return read;
}

unsigned long OsFileReader::performSeek(long offset, OsFileTypes::SeekMode mode) const
{
    return OsFsUtilsWindows::seek(_handle, offset, mode);
}

void OsFileReader::performClose()
{
    if (!OsFsUtilsWindows::close(std::exchange(_handle, OsFileTypes::invalidHandle)))
        raise<ExSysErrorWindows>(KR_HERE);
}

} // namespace Kr

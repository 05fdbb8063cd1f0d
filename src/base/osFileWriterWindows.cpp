#include <base/osFileWriter.h>

#include <base/exSysError.h>
#include <base/internal/os/osFsUtilsWindows.h>
#include <base/raise.h>
#include <platform/platform.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

namespace Kr
{

namespace
{

HANDLE toSystem(OsFileTypes::Handle handle)
{
    return reinterpret_cast<HANDLE>(handle); // NOLINT: a handle is a number to the library
}

} // namespace

OsFileTypes::Handle OsFileWriter::performOpen(bool failIfExists) const
{
    const OsFileTypes::Handle handle = OsFsUtilsWindows::open(
        _path, OsFsUtilsWindows::WriteAccess, OsFsUtilsWindows::SharedReadWrite,
        failIfExists ? OsFsUtilsWindows::CreateNew : OsFsUtilsWindows::CreateAlways);
    if (handle == OsFileTypes::invalidHandle)
        raise<ExSysErrorWindows>(KR_HERE);
    return handle;
}

unsigned long OsFileWriter::performWrite(const void* buffer, unsigned long count) const
{
    constexpr unsigned long most = std::numeric_limits<DWORD>::max();
    DWORD written = 0;
    const BOOL done = WriteFile(toSystem(_handle), buffer,
                                static_cast<DWORD>(std::min(count, most)), &written, nullptr);
    if (done == 0 && GetLastError() != ERROR_HANDLE_DISK_FULL)
        raise<ExSysErrorWindows>(KR_HERE);
    return written;
}

unsigned long OsFileWriter::performSeek(long offset, OsFileTypes::SeekMode mode) const
{
    return OsFsUtilsWindows::seek(_handle, offset, mode);
}

void OsFileWriter::performReserve(unsigned long size) const
{
    const HANDLE handle = toSystem(_handle);
    LARGE_INTEGER before = {};
    LARGE_INTEGER end = {};
    end.QuadPart = static_cast<std::int64_t>(size);
    if (SetFilePointerEx(handle, LARGE_INTEGER(), &before, FILE_CURRENT) == 0 ||
        SetFilePointerEx(handle, end, nullptr, FILE_BEGIN) == 0)
        raise<ExSysErrorWindows>(KR_HERE);
    if (SetEndOfFile(handle) != 0)
        return;
    const DWORD error = GetLastError();
    SetFilePointerEx(handle, before, nullptr, FILE_BEGIN);
    SetLastError(error);
    raise<ExSysErrorWindows>(KR_HERE);
}

void OsFileWriter::performFlush() const
{
    if (FlushFileBuffers(toSystem(_handle)) == 0)
        raise<ExSysErrorWindows>(KR_HERE);
}

void OsFileWriter::performClose()
{
    if (!OsFsUtilsWindows::close(std::exchange(_handle, OsFileTypes::invalidHandle)))
        raise<ExSysErrorWindows>(KR_HERE);
}

} // namespace Kr

#include <base/osFile.h>

#include <base/assert.h>
#include <base/exSysError.h>
#include <base/internal/os/osFsUtilsWindows.h>
#include <base/osDateUtil.h>
#include <base/osFileEx.h>
#include <base/raise.h>
#include <platform/anyPath.h>

#include <limits>

namespace Kr
{

namespace
{

HANDLE toSystem(OsFileTypes::Handle handle)
{
    return reinterpret_cast<HANDLE>(handle); // NOLINT: a handle is a number to the library
}

/// Local time with its rules at that date; the milliseconds are dropped on purpose.
ObjPtrRet<OsDateTypes::DateRep> toDate(const FILETIME& fileTime)
{
    SYSTEMTIME universal = {};
    SYSTEMTIME local = {};
    if (FileTimeToSystemTime(&fileTime, &universal) == 0)
        raise<ExSysErrorWindows>(KR_HERE);
    if (SystemTimeToTzSpecificLocalTime(nullptr, &universal, &local) == 0)
        raise<ExSysErrorWindows>(KR_HERE);
    ObjPtr<OsDateTypes::DateRep> date(new OsDateTypes::DateRep);
    OsDateUtil::makeTime(local.wYear, local.wMonth, local.wDay, local.wHour, local.wMinute,
                         static_cast<double>(local.wSecond), OsDateTypes::LocalTime, *date);
    return date;
}

FILETIME toFileTime(const OsDateTypes::DateRep& date)
{
    constexpr std::int64_t microsecondsFrom1601To1970 = 11644473600 * 1000000;
    const std::int64_t microseconds =
        OsDateUtil::getTimePoint(date).time_since_epoch().count() + microsecondsFrom1601To1970;
    const auto steps = static_cast<std::uint64_t>(microseconds) * 10;
    return {static_cast<DWORD>(steps), static_cast<DWORD>(steps >> 32)};
}

} // namespace

OsFileTypes::Handle OsFile::open(int mode) const
{
    const OsFileTypes::Handle handle = OsFsUtilsWindows::open(
        _path, mode, OsFsUtilsWindows::SharedReadWrite, OsFsUtilsWindows::OpenExisting);
    if (handle == OsFileTypes::invalidHandle)
        raise<ExSysErrorWindows>(KR_HERE);
    return handle;
}

void OsFile::close(OsFileTypes::Handle handle) const
{
    if (!OsFsUtilsWindows::close(handle))
        raise<ExSysErrorWindows>(KR_HERE);
}

unsigned long OsFile::performGetSize() const
{
    const OsFileTypes::Handle handle = open(OsFsUtilsWindows::ReadAccess);
    const DWORD size = GetFileSize(toSystem(handle), nullptr);
    const DWORD error = GetLastError();
    close(handle);
    SetLastError(error);
    if (size == INVALID_FILE_SIZE)
        raise<ExSysErrorWindows>(KR_HERE);
    return size;
}

ObjPtrRet<OsDateTypes::DateRep> OsFile::performGetTime(FileTime which) const
{
    FILETIME time = {};
    const OsFileTypes::Handle handle = open(OsFsUtilsWindows::ReadAccess);
    const BOOL known = GetFileTime(toSystem(handle), nullptr, which == LastAccess ? &time : nullptr,
                                   which == LastModification ? &time : nullptr);
    const DWORD error = GetLastError();
    close(handle);
    SetLastError(error);
    if (known == 0)
        raise<ExSysErrorWindows>(KR_HERE);
    return toDate(time);
}

ObjPtrRet<OsFileTypes::UnbufferedInfo> OsFile::performGetUnbufferedInfo() const
{
    const char* const path = _path.getChars();
    KR_ASSERT(path[1] == ':');
    const char rootPath[] = {path[0], ':', '\\', '\0'};
    DWORD sectorsPerCluster = 0;
    DWORD bytesPerSector = 0;
    DWORD numFreeClusters = 0;
    DWORD totalClusters = 0;
    const bool known = GetDiskFreeSpaceA(rootPath, &sectorsPerCluster, &bytesPerSector,
                                         &numFreeClusters, &totalClusters) != 0;
    KR_ASSERT_TEXT(known,
                   "GetDiskFreeSpace( rootPath, &sectorsPerCluster, &bytesPerSector, "
                   "&numFreeClusters, &totalClusters )",
                   __LINE__);
    if (GetDriveTypeA(rootPath) == DRIVE_REMOTE)
        raise<OsFileEx::ExNoRemoteUnbuffered>(KR_HERE, rootPath);
    return ObjPtrRet<OsFileTypes::UnbufferedInfo>(new OsFileTypes::UnbufferedInfo(
        bytesPerSector, bytesPerSector, std::numeric_limits<std::uint32_t>::max()));
}

/// Whether the file lets itself be opened for one who wants it alone. The read-only attribute
/// counts also where a privileged user could write all the same.
int OsFile::performGetAccess(int mask) const
{
    const DWORD attributes = krGetAttributes(_path.getChars());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0)
        mask &= ~OsFsUtilsWindows::WriteAccess;
    int granted = 0;
    for (const int access : {OsFsUtilsWindows::ReadAccess, OsFsUtilsWindows::WriteAccess})
    {
        if ((mask & access) == 0)
            continue;
        const OsFileTypes::Handle handle = OsFsUtilsWindows::open(
            _path, access, OsFsUtilsWindows::Exclusive, OsFsUtilsWindows::OpenExisting);
        if (handle == OsFileTypes::invalidHandle)
            continue;
        granted += access;
        OsFsUtilsWindows::close(handle);
    }
    return granted;
}

OsFileTypes::ElementType OsFile::performGetType() const
{
    const DWORD attributes = krGetAttributes(_path.getChars());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        raise<ExSysErrorWindows>(KR_HERE);
    return OsFsUtilsWindows::getType(attributes);
}

bool OsFile::performExists() const
{
    return krGetAttributes(_path.getChars()) != INVALID_FILE_ATTRIBUTES;
}

void OsFile::performRemove() const
{
    if (!krDeleteFile(_path.getChars()))
        raise<ExSysErrorWindows>(KR_HERE);
}

void OsFile::performRename(const OsFilePath& target) const
{
    if (!krRename(_path.getChars(), target.getChars()))
        raise<ExSysErrorWindows>(KR_HERE);
}

std::uint64_t OsFile::getFullSize() const
{
    checkExists();
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    if (!krDescribe(_path.getChars(), data))
        raise<ExSysErrorWindows>(KR_HERE);
    return (std::uint64_t{data.nFileSizeHigh} << 32) | data.nFileSizeLow;
}

void OsFile::setLastModificationTime(const OsDateTypes::DateRep& date)
{
    checkExists();
    const FILETIME time = toFileTime(date);
    const OsFileTypes::Handle handle = open(OsFsUtilsWindows::WriteAccess);
    const BOOL set = SetFileTime(toSystem(handle), nullptr, nullptr, &time);
    const DWORD error = GetLastError();
    close(handle);
    SetLastError(error);
    if (set == 0)
        raise<ExSysErrorWindows>(KR_HERE);
}

void OsFile::setReadOnly(bool isReadOnly)
{
    checkExists();
    const DWORD attributes = krGetAttributes(_path.getChars()) & ~DWORD{FILE_ATTRIBUTE_READONLY};
    if (!krSetAttributes(_path.getChars(),
                         isReadOnly ? attributes | FILE_ATTRIBUTE_READONLY : attributes))
        raise<ExSysErrorWindows>(KR_HERE);
}

} // namespace Kr

#include <base/internal/os/osFsUtilsWindows.h>

#include <base/assert.h>
#include <base/exSysError.h>
#include <base/osFileEx.h>
#include <base/raise.h>
#include <platform/anyPath.h>

namespace Kr
{

namespace
{

HANDLE toSystem(OsFileTypes::Handle handle)
{
    return reinterpret_cast<HANDLE>(handle); // NOLINT: a handle is a number to the library
}

constexpr DWORD shareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

OsFileTypes::Handle openWith(const char* path, DWORD access, DWORD share, DWORD disposition,
                             DWORD flags = FILE_ATTRIBUTE_NORMAL)
{
    const HANDLE handle = krCreateFile(path, access, share, disposition, flags);
    return handle != INVALID_HANDLE_VALUE ? reinterpret_cast<OsFileTypes::Handle>(handle)
                                          : OsFileTypes::invalidHandle;
}

/// What tells two open files apart.
bool identify(const OsFilePath& path, BY_HANDLE_FILE_INFORMATION& information)
{
    const OsFileTypes::Handle handle = openWith(path.getChars(), 0, shareAll, OPEN_EXISTING);
    if (handle == OsFileTypes::invalidHandle)
        return false;
    const bool known = GetFileInformationByHandle(toSystem(handle), &information) != 0;
    CloseHandle(toSystem(handle));
    return known;
}

} // namespace

OsFileTypes::Handle OsFsUtilsWindows::open(const OsFilePath& path, int access, Sharing sharing,
                                           Disposition disposition)
{
    constexpr DWORD dispositions[] = {OPEN_EXISTING, CREATE_NEW, CREATE_ALWAYS};
    const DWORD accessMask = ((access & ReadAccess) != 0 ? GENERIC_READ : 0) |
                             ((access & WriteAccess) != 0 ? GENERIC_WRITE : 0);
    return openWith(path.getChars(), accessMask,
                    sharing == SharedReadWrite ? FILE_SHARE_READ | FILE_SHARE_WRITE : 0,
                    dispositions[disposition]);
}

bool OsFsUtilsWindows::close(OsFileTypes::Handle handle)
{
    return CloseHandle(toSystem(handle)) != 0;
}

void OsFsUtilsWindows::createFile(const char* path, bool failIfExists)
{
    if (path == nullptr || *path == '\0')
        raise<OsFileEx::ExNullFilePath>(KR_HERE);
    const OsFileTypes::Handle handle = open(path, ReadAccess | WriteAccess, SharedReadWrite,
                                            failIfExists ? CreateNew : CreateAlways);
    if (handle == OsFileTypes::invalidHandle)
    {
        if (failIfExists && GetLastError() == ERROR_FILE_EXISTS)
            raise<OsFileEx::ExFileExists>(KR_HERE);
        raise<ExSysErrorWindows>(KR_HERE);
    }
    if (!close(handle))
        raise<ExSysErrorWindows>(KR_HERE);
}

OsFileTypes::ElementType OsFsUtilsWindows::getType(unsigned long attributes)
{
    // System, temporary, sparse, reparse point, compressed, offline or encrypted: on purpose also
    // for files that are ordinary but for their storage.
    constexpr unsigned long other = 0x5F04;
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0)
        return OsFileTypes::Directory;
    return (attributes & other) != 0 ? OsFileTypes::OtherElement : OsFileTypes::RegularFile;
}

unsigned long OsFsUtilsWindows::seek(OsFileTypes::Handle handle, long offset,
                                     OsFileTypes::SeekMode mode)
{
    constexpr DWORD methods[] = {FILE_CURRENT, FILE_BEGIN, FILE_END};
    KR_ASSERT(mode >= OsFileTypes::SeekCurrent && mode <= OsFileTypes::SeekEnd);
    const auto distance = static_cast<LONG>(offset);
    if (distance != offset)
    {
        SetLastError(ERROR_INVALID_PARAMETER); // rather than go somewhere else
        raise<ExSysErrorWindows>(KR_HERE);
    }
    const DWORD position = SetFilePointer(toSystem(handle), distance, nullptr, methods[mode]);
    // The last error is not cleared before the call: one that is left over counts as a failure.
    if (GetLastError() != ERROR_SUCCESS)
        raise<ExSysErrorWindows>(KR_HERE);
    return position;
}

bool OsFsUtilsWindows::isSameFile(const OsFilePath& lhs, const OsFilePath& rhs)
{
    BY_HANDLE_FILE_INFORMATION left = {};
    BY_HANDLE_FILE_INFORMATION right = {};
    return identify(rhs, right) && identify(lhs, left) &&
           left.dwVolumeSerialNumber == right.dwVolumeSerialNumber &&
           left.nFileIndexHigh == right.nFileIndexHigh && left.nFileIndexLow == right.nFileIndexLow;
}

bool OsFsUtilsWindows::replaceFile(const OsFilePath& from, const OsFilePath& to)
{
    return krMoveFile(from.getChars(), to.getChars(),
                      MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
}

bool OsFsUtilsWindows::isInUse()
{
    const DWORD error = GetLastError();
    return error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED ||
           error == ERROR_LOCK_VIOLATION;
}

bool OsFsUtilsWindows::isProtected(const OsFilePath& path)
{
    const DWORD attributes = krGetAttributes(path.getChars());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return false;
    if ((attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY)) != 0)
        return true;
    const OsFileTypes::Handle handle =
        openWith(path.getChars(), GENERIC_WRITE, shareAll, OPEN_EXISTING);
    if (handle == OsFileTypes::invalidHandle)
        return GetLastError() == ERROR_ACCESS_DENIED;
    const bool isFile = GetFileType(toSystem(handle)) == FILE_TYPE_DISK;
    CloseHandle(toSystem(handle));
    return !isFile;
}

OsFileTypes::Handle OsFsUtilsWindows::claim(const OsFilePath& path)
{
    return openWith(path.getChars(), GENERIC_READ, shareAll, CREATE_NEW);
}

bool OsFsUtilsWindows::isTaken()
{
    const DWORD error = GetLastError();
    return error == ERROR_FILE_EXISTS || error == ERROR_SHARING_VIOLATION ||
           error == ERROR_ACCESS_DENIED; // what a file says that is being removed
}

bool OsFsUtilsWindows::removeAbandoned(const OsFilePath& path)
{
    const OsFileTypes::Handle handle = openWith(path.getChars(), GENERIC_READ | DELETE, 0,
                                                OPEN_EXISTING, FILE_FLAG_DELETE_ON_CLOSE);
    return handle != OsFileTypes::invalidHandle && close(handle);
}

void OsFsUtilsWindows::copyProtection(const OsFilePath& from, const OsFilePath& to)
{
    krCopyProtection(from.getChars(), to.getChars());
}

} // namespace Kr

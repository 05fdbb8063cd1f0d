#include <platform/platform.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace
{

thread_local DWORD lastError = ERROR_SUCCESS;

struct SystemText
{
    DWORD code;
    const char* text;
};

constexpr SystemText systemTexts[] = {
    {ERROR_SUCCESS, "The operation completed successfully."},
    {ERROR_FILE_NOT_FOUND, "The system cannot find the file specified."},
    {ERROR_PATH_NOT_FOUND, "The system cannot find the path specified."},
    {ERROR_TOO_MANY_OPEN_FILES, "The system cannot open the file."},
    {ERROR_ACCESS_DENIED, "Access is denied."},
    {ERROR_INVALID_HANDLE, "The handle is invalid."},
    {ERROR_NOT_ENOUGH_MEMORY, "Not enough memory is available to process this command."},
    {ERROR_NOT_SAME_DEVICE, "The system cannot move the file to a different disk drive."},
    {ERROR_NO_MORE_FILES, "There are no more files."},
    {ERROR_WRITE_PROTECT, "The media is write protected."},
    {ERROR_SHARING_VIOLATION,
     "The process cannot access the file because it is being used by another process."},
    {ERROR_LOCK_VIOLATION, "The process cannot access the file because another process has locked "
                           "a portion of the file."},
    {ERROR_BAD_LENGTH, "The program issued a command but the command length is incorrect."},
    {ERROR_HANDLE_EOF, "Reached the end of the file."},
    {ERROR_HANDLE_DISK_FULL, "The disk is full."},
    {ERROR_FILE_EXISTS, "The file exists."},
    {ERROR_INVALID_PARAMETER, "The parameter is incorrect."},
    {ERROR_BROKEN_PIPE, "The pipe has been ended."},
    {ERROR_DISK_FULL, "There is not enough space on the disk."},
    {ERROR_INSUFFICIENT_BUFFER, "The data area passed to a system call is too small."},
    {ERROR_INVALID_NAME, "The filename, directory name, or volume label syntax is incorrect."},
    {ERROR_NEGATIVE_SEEK,
     "An attempt was made to move the file pointer before the beginning of the file."},
    {ERROR_MOD_NOT_FOUND, "The specified module could not be found."},
    {ERROR_PROC_NOT_FOUND, "The specified procedure could not be found."},
    {ERROR_DIR_NOT_EMPTY, "The directory is not empty."},
    {ERROR_ALREADY_EXISTS, "Cannot create a file when that file already exists."},
    {ERROR_BAD_EXE_FORMAT, "The file is not a program or library that this system can load."},
    {ERROR_FILENAME_EXCED_RANGE, "The filename or extension is too long."},
    {ERROR_DIRECTORY, "The directory name is invalid."},
    {ERROR_NO_UNICODE_TRANSLATION, "The text is not well-formed."},
    {ERROR_MORE_DATA, "More data is available."},
    {ERROR_NO_MORE_ITEMS, "No more data is available."},
    {ERROR_REGISTRY_CORRUPT, "The registry is corrupted."},
    {ERROR_KEY_DELETED, "Illegal operation attempted on a registry key that has been marked for "
                        "deletion."},
    {ERROR_MR_MID_NOT_FOUND, "The system cannot find message text for the given number."},
    {ERROR_IO_DEVICE, "The request could not be performed because of an I/O device error."},
    {ERROR_NO_SYSTEM_RESOURCES,
     "Insufficient system resources exist to complete the requested service."},
};

struct ErrnoCode
{
    int error;
    DWORD code;
};

constexpr ErrnoCode errnoCodes[] = {
    {0, ERROR_SUCCESS},
    {E2BIG, ERROR_FILENAME_EXCED_RANGE},
    {EACCES, ERROR_ACCESS_DENIED},
    {EAGAIN, ERROR_NO_SYSTEM_RESOURCES},
    {EBADF, ERROR_INVALID_HANDLE},
    {EBUSY, ERROR_SHARING_VIOLATION},
    {EDQUOT, ERROR_DISK_FULL},
    {EEXIST, ERROR_ALREADY_EXISTS},
    {EFBIG, ERROR_DISK_FULL},
    {EINVAL, ERROR_INVALID_PARAMETER},
    {EIO, ERROR_IO_DEVICE},
    {EISDIR, ERROR_ACCESS_DENIED},
    {EMFILE, ERROR_TOO_MANY_OPEN_FILES},
    {ELOOP, ERROR_PATH_NOT_FOUND},
    {ENAMETOOLONG, ERROR_FILENAME_EXCED_RANGE},
    {ENFILE, ERROR_TOO_MANY_OPEN_FILES},
    {ENOENT, ERROR_FILE_NOT_FOUND},
    {ENOMEM, ERROR_NOT_ENOUGH_MEMORY},
    {ENOSPC, ERROR_DISK_FULL},
    {ENOTDIR, ERROR_PATH_NOT_FOUND},
    {ENOEXEC, ERROR_BAD_EXE_FORMAT},
    {ENOTEMPTY, ERROR_DIR_NOT_EMPTY},
    {EPIPE, ERROR_BROKEN_PIPE},
    {EPERM, ERROR_ACCESS_DENIED},
    {ETXTBSY, ERROR_SHARING_VIOLATION},
    {EXDEV, ERROR_NOT_SAME_DEVICE},
    {EROFS, ERROR_WRITE_PROTECT},
};

} // namespace

DWORD GetLastError() noexcept
{
    return lastError;
}

void SetLastError(DWORD code) noexcept
{
    lastError = code;
}

DWORD krErrorFromErrno(int error) noexcept
{
    for (const ErrnoCode& entry : errnoCodes)
        if (entry.error == error)
            return entry.code;
    return ERROR_IO_DEVICE;
}

DWORD FormatMessageA(DWORD flags, const void*, DWORD code, DWORD, char* buffer, DWORD size,
                     void*) noexcept
{
    if ((flags & FORMAT_MESSAGE_FROM_SYSTEM) == 0 || buffer == nullptr)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    for (const SystemText& entry : systemTexts)
    {
        if (entry.code != code)
            continue;
        const std::size_t length =
            std::strlen(entry.text) + 2; // the system ends its texts with CR LF
        if (length >= size)
        {
            SetLastError(ERROR_INSUFFICIENT_BUFFER);
            return 0;
        }
        std::snprintf(buffer, size, "%s\r\n", entry.text);
        return static_cast<DWORD>(length);
    }
    SetLastError(ERROR_MR_MID_NOT_FOUND);
    return 0;
}

#pragma once

/// @file
/// Internal to the library: what the file classes ask of the system. Paths are of any length.

#include <base/osFilePath.h>
#include <base/osFileTypes.h>

#include <cstdint>

namespace Kr
{

class OsFsUtilsWindows
{
public:
    enum Access
    {
        QueryAccess = 0, ///< takes no part in the sharing
        ReadAccess = 1,
        WriteAccess = 2
    };
    enum Sharing
    {
        Exclusive,
        SharedReadWrite
    };
    enum Disposition
    {
        OpenExisting,
        CreateNew,
        CreateAlways
    };

    /// The handle, or `OsFileTypes::invalidHandle` with the last error set.
    static OsFileTypes::Handle open(const OsFilePath& path, int access, Sharing sharing,
                                    Disposition disposition);
    static bool close(OsFileTypes::Handle handle);

    /// Creates or truncates a file. Raises `OsFileEx::ExNullFilePath` for a null or empty text,
    /// `OsFileEx::ExFileExists`, `ExSysErrorWindows`.
    static void createFile(const char* path, bool failIfExists);

    static OsFileTypes::ElementType getType(unsigned long attributes);

    /// One seek with a 32-bit offset; the low 32 bits of the new position. The last error decides
    /// whether it failed: it is not cleared before.
    static unsigned long seek(OsFileTypes::Handle handle, long offset, OsFileTypes::SeekMode mode);

    /// Whether both paths name one file.
    static bool isSameFile(const OsFilePath& lhs, const OsFilePath& rhs);

    /// Puts the file `from` in the place of `to`, in one step. False with the last error set.
    static bool replaceFile(const OsFilePath& from, const OsFilePath& to);
    /// Whether the last error says that somebody holds the file at this moment.
    static bool isInUse();
    /// Whether something is there that no file may take the place of: it cannot be written, or is
    /// no file.
    static bool isProtected(const OsFilePath& path);

    /// Creates a file for one who writes, renames or removes it while this handle is open, which
    /// says to `removeAbandoned` that it is in use. `OsFileTypes::invalidHandle` with the last
    /// error set.
    static OsFileTypes::Handle claim(const OsFilePath& path);
    /// Whether the last error says that a claim may succeed under another name.
    static bool isTaken();
    /// Removes the file, unless anybody has it open. False if it stays, or there is none.
    static bool removeAbandoned(const OsFilePath& path);
    /// Gives the one file the other's owner and permissions, as far as that can be done.
    static void copyProtection(const OsFilePath& from, const OsFilePath& to);
};

} // namespace Kr

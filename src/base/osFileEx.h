#pragma once

/// @file
/// The exceptions of paths, files and directories. A path in a reason is cut at 256 characters.
/// @code
/// try
/// {
///     Kr::OsFile("scene.txt").copyTo("backup");
/// }
/// catch (const Kr::OsFileEx& error) // the path is at fault
/// {
///     std::cerr << error.getReason() << '\n';
/// }
/// catch (const Kr::ExSysErrorWindows& error) // the system has refused
/// {
///     std::cerr << error.getReason() << " (" << error.getErrorCode() << ")\n";
/// }
/// @endcode
/// `ExPathNotWritable` has the text of `ExInvalidPath` on purpose: tell them apart by type.

#include <base/exBase.h>

namespace Kr
{

class KR_BASE_API OsFileEx : public ExBase
{
public:
    class ExSeparatorNotAllowed;
    class ExIllegalPathConcat;
    class ExHomeNotDefined;
    class ExFileExists;
    class ExNullFilePath;
    class ExPathNotWritable;
    class ExInvalidPath;
    class ExNoRemoteUnbuffered;

protected:
    OsFileEx(const char* file, int line) noexcept;

    /// Sets the reason from a format with one "%.*s", with a precision of 256; a null path counts
    /// as empty.
    void formatReason(const char* format, const char* path) noexcept;
};

/// "Separator not allowed in path elements."
class KR_BASE_API OsFileEx::ExSeparatorNotAllowed
    : public ExConcrete<OsFileEx::ExSeparatorNotAllowed, std::invalid_argument, OsFileEx>
{
public:
    ExSeparatorNotAllowed(const char* file, int line);
};

/// "Attempt to concatenate absolute path."
class KR_BASE_API OsFileEx::ExIllegalPathConcat
    : public ExConcrete<OsFileEx::ExIllegalPathConcat, std::runtime_error, OsFileEx>
{
public:
    ExIllegalPathConcat(const char* file, int line);
};

/// "Cannot get home directory from the environment."
class KR_BASE_API OsFileEx::ExHomeNotDefined
    : public ExConcrete<OsFileEx::ExHomeNotDefined, std::runtime_error, OsFileEx>
{
public:
    ExHomeNotDefined(const char* file, int line);
};

/// "File already exists."
class KR_BASE_API OsFileEx::ExFileExists
    : public ExConcrete<OsFileEx::ExFileExists, std::runtime_error, OsFileEx>
{
public:
    ExFileExists(const char* file, int line);
};

/// "File has null file path."
class KR_BASE_API OsFileEx::ExNullFilePath
    : public ExConcrete<OsFileEx::ExNullFilePath, std::runtime_error, OsFileEx>
{
public:
    ExNullFilePath(const char* file, int line);
};

/// "Invalid path: '%.*s'.": the target of a copy cannot be written.
class KR_BASE_API OsFileEx::ExPathNotWritable
    : public ExConcrete<OsFileEx::ExPathNotWritable, std::invalid_argument, OsFileEx>
{
public:
    ExPathNotWritable(const char* file, int line, const char* path);
};

/// "Invalid path: '%.*s'.": nothing is there, or the text is no path.
class KR_BASE_API OsFileEx::ExInvalidPath
    : public ExConcrete<OsFileEx::ExInvalidPath, std::invalid_argument, OsFileEx>
{
public:
    ExInvalidPath(const char* file, int line, const char* path);
};

/// "Unbuffered IO is impossible on a remote drive: '%.*s' is a remote path."
class KR_BASE_API OsFileEx::ExNoRemoteUnbuffered
    : public ExConcrete<OsFileEx::ExNoRemoteUnbuffered, std::runtime_error, OsFileEx>
{
public:
    ExNoRemoteUnbuffered(const char* file, int line, const char* path);
};

} // namespace Kr

#include <base/osFileEx.h>

#include <base/internal/errors/fixedText.h>

#include <cstdio>

namespace Kr
{

OsFileEx::OsFileEx(const char* file, int line) noexcept
    : ExBase(file, line)
{
}

void OsFileEx::formatReason(const char* format, const char* path) noexcept
{
    constexpr int shownLength = 256;
    char reason[reasonSize];
    std::snprintf(reason, sizeof reason, format, shownLength, orEmpty(path));
    setReason(reason);
}

OsFileEx::ExSeparatorNotAllowed::ExSeparatorNotAllowed(const char* file, int line)
    : ExConcrete(file, line)
{
    setReason("Separator not allowed in path elements.");
}

OsFileEx::ExIllegalPathConcat::ExIllegalPathConcat(const char* file, int line)
    : ExConcrete(file, line)
{
    setReason("Attempt to concatenate absolute path.");
}

OsFileEx::ExHomeNotDefined::ExHomeNotDefined(const char* file, int line)
    : ExConcrete(file, line)
{
    setReason("Cannot get home directory from the environment.");
}

OsFileEx::ExFileExists::ExFileExists(const char* file, int line)
    : ExConcrete(file, line)
{
    setReason("File already exists.");
}

OsFileEx::ExNullFilePath::ExNullFilePath(const char* file, int line)
    : ExConcrete(file, line)
{
    setReason("File has null file path.");
}

OsFileEx::ExPathNotWritable::ExPathNotWritable(const char* file, int line, const char* path)
    : ExConcrete(file, line)
{
    formatReason("Invalid path: '%.*s'.", path);
}

OsFileEx::ExInvalidPath::ExInvalidPath(const char* file, int line, const char* path)
    : ExConcrete(file, line)
{
    formatReason("Invalid path: '%.*s'.", path);
}

OsFileEx::ExNoRemoteUnbuffered::ExNoRemoteUnbuffered(const char* file, int line, const char* path)
    : ExConcrete(file, line)
{
    formatReason("Unbuffered IO is impossible on a remote drive: '%.*s' is a remote path.", path);
}

} // namespace Kr

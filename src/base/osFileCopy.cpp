#include <base/exSysError.h>
#include <base/internal/os/osFsUtilsWindows.h>
#include <base/internal/os/osTransferBlock.h>
#include <base/osFile.h>
#include <base/osFileEx.h>
#include <base/osFileReader.h>
#include <base/osFileWriter.h>
#include <base/raise.h>

// Copying stands above the reader and the writer, which know files.

namespace Kr
{

namespace
{

void copyContent(OsFileReader& reader, OsFileWriter& writer)
{
    const auto block = makeTransferBlocks(1);
    while (const unsigned long size = reader.read(block[0].bytes, OsTransferBlock::size))
        if (writer.write(block[0].bytes, size) != size)
            raise<ExSysErrorWindows>(KR_HERE); // the disk is full: the last error says so
    writer.close();
    reader.close();
}

} // namespace

/// Where a copy to the target goes.
OsFilePath OsFile::getCopyPath(const OsFilePath& target) const
{
    OsFile element(target);
    if (!element.exists())
        return target;
    if (element.isDirectory())
        return target + _path.getBaseName();
    if (!element.isWritable())
        raise<OsFileEx::ExPathNotWritable>(KR_HERE, target.getChars());
    return target;
}

void OsFile::copyTo(const OsFilePath& target)
{
    checkPath();
    if (target.isEmpty())
        raise<OsFileEx::ExNullFilePath>(KR_HERE);
    const OsFilePath destination = getCopyPath(target);
    OsFileReader reader(_path);
    // Opening this file itself for writing would empty it before it is read.
    if (OsFsUtilsWindows::isSameFile(_path, destination))
        raise<OsFileEx::ExPathNotWritable>(KR_HERE, target.getChars());
    OsFileWriter writer(destination, OsFileTypes::Permissions(3, 3, 0), false);
    copyContent(reader, writer);
}

} // namespace Kr

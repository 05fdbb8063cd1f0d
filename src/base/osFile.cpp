#include <base/osFile.h>

#include <base/internal/os/osFsUtilsWindows.h>
#include <base/osFileEx.h>
#include <base/raise.h>

#include <utility>

namespace Kr
{

OsFile::OsFile(const OsFilePath& path)
    : _path(path)
{
}

OsFile::OsFile(const OsFile& other) = default;
OsFile& OsFile::operator=(const OsFile& other) = default;
OsFile::~OsFile() = default;

const OsFilePath& OsFile::getPath() const noexcept
{
    return _path;
}

void OsFile::setPath(const OsFilePath& path)
{
    _path = path;
}

void OsFile::checkPath() const
{
    if (_path.isEmpty())
        raise<OsFileEx::ExNullFilePath>(KR_HERE);
}

void OsFile::checkExists() const
{
    checkPath();
    if (!exists())
        raise<OsFileEx::ExInvalidPath>(KR_HERE, _path.getChars());
}

ArrayPtrRet<char> OsFile::getOwner()
{
    checkExists();
    return ArrayPtrRet<char>(new char[1]());
}

unsigned long OsFile::getSize() const
{
    checkExists();
    return performGetSize();
}

ObjPtrRet<OsDateTypes::DateRep> OsFile::getLastModificationTime()
{
    checkExists();
    return performGetTime(LastModification);
}

ObjPtrRet<OsDateTypes::DateRep> OsFile::getLastAccessTime()
{
    checkExists();
    return performGetTime(LastAccess);
}

ObjPtrRet<OsFileTypes::UnbufferedInfo> OsFile::getUnbufferedInfo()
{
    checkExists();
    return performGetUnbufferedInfo();
}

int OsFile::getAccess() const
{
    checkPath();
    return performGetAccess(7);
}

bool OsFile::isReadable() const
{
    checkPath();
    return performGetAccess(1) != 0;
}

bool OsFile::isWritable() const
{
    checkPath();
    return performGetAccess(2) != 0;
}

// `getType` is not const in its slot, for derived classes that look the type up once and keep it.

bool OsFile::isFile() const
{
    checkPath();
    return const_cast<OsFile*>(this)->getType() == OsFileTypes::RegularFile;
}

bool OsFile::isDirectory() const
{
    checkPath();
    return const_cast<OsFile*>(this)->getType() == OsFileTypes::Directory;
}

bool OsFile::isSymLink() const
{
    checkExists();
    return false;
}

OsFileTypes::ElementType OsFile::getType()
{
    checkExists();
    return performGetType();
}

bool OsFile::exists() const
{
    checkPath();
    return performExists();
}

void OsFile::refreshInfo() const
{
    checkPath();
}

void OsFile::create(const OsFileTypes::Permissions&, bool failIfExists)
{
    checkPath();
    OsFsUtilsWindows::createFile(_path.getChars(), failIfExists);
}

void OsFile::remove()
{
    checkPath();
    performRemove();
}

void OsFile::renameTo(const OsFilePath& target)
{
    checkPath();
    if (target.isEmpty())
        raise<OsFileEx::ExNullFilePath>(KR_HERE);
    OsFilePath renamed(target); // before the renaming: nothing may fail between it and the change
    performRename(target);
    _path = std::move(renamed);
}

} // namespace Kr

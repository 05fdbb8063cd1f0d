#pragma once

/// @file
/// A file or other element of the file system, named by its path: what it is, and what can be done
/// with it as a whole.
/// @code
/// const Kr::OsFilePath path("scene.txt");
/// Kr::OsFile scene(path);
/// if (scene.exists() && scene.isFile())
/// {
///     const Kr::ObjPtr<Kr::OsDateTypes::DateRep> saved(scene.getLastModificationTime());
///     std::cout << path.getUri() << ": " << scene.getFullSize() << " bytes, " << *saved << '\n';
///     scene.copyTo("backup"); // into the directory, if it is one
/// }
/// @endcode
/// An object holds a path and nothing else: nothing is open between calls, and nothing is cached.
/// Every operation raises `OsFileEx::ExNullFilePath` for an empty path, its own or its argument's,
/// and `ExSysErrorWindows` when the system refuses; those that need the element raise
/// `OsFileEx::ExInvalidPath` when there is none. Pitfalls:
/// - `isReadable`, `isWritable` and `getAccess` try to open the file for themselves alone: a file
///   that anybody holds open, this process included, is neither.
/// - `getSize` knows 32 bits; `getFullSize` knows them all.
///
/// To read and write a file's content see `OsFileReader`, `OsFileWriter` and `OsSafeWriter`.

#include <base/arrayPtr.h>
#include <base/krBaseApi.h>
#include <base/objPtr.h>
#include <base/osDateTypes.h>
#include <base/osFilePath.h>
#include <base/osFileTypes.h>

#include <cstdint>

namespace Kr
{

class KR_BASE_API OsFile
{
public:
    explicit OsFile(const OsFilePath& path);
    OsFile(const OsFile& other);
    OsFile& operator=(const OsFile& other);
    virtual ~OsFile();

    virtual ArrayPtrRet<char> getOwner(); ///< always ""
    /// In bytes. Of a file of 4 GiB or more it gives the low 32 bits, and raises
    /// `ExSysErrorWindows` if those are all set.
    virtual unsigned long getSize() const;
    /// Local times, in whole seconds.
    virtual ObjPtrRet<OsDateTypes::DateRep> getLastModificationTime();
    virtual ObjPtrRet<OsDateTypes::DateRep> getLastAccessTime();
    /// Of the element's drive; raises `ExInternalError` if the path does not begin with one, and
    /// `OsFileEx::ExNoRemoteUnbuffered` if that is on another machine.
    virtual ObjPtrRet<OsFileTypes::UnbufferedInfo> getUnbufferedInfo();
    virtual int getAccess() const; ///< 1 to read, 2 to write, added up; 0 if neither
    virtual bool isReadable() const;
    virtual bool isWritable() const;
    virtual bool isFile() const;
    virtual bool isDirectory() const;
    virtual bool isSymLink() const; ///< always false
    /// A file that is compressed, encrypted or otherwise peculiar is `OtherElement`.
    virtual OsFileTypes::ElementType getType();
    virtual bool exists() const;
    virtual void refreshInfo() const; ///< nothing is cached, so there is nothing to do
    virtual void remove();            ///< a file; for directories see `OsDir`
    /// Raises if something is at the target. The object names the target from then on.
    virtual void renameTo(const OsFilePath& target);
    /// Copies the content, not the dates and permissions, into a file of that path, or of this
    /// one's name inside a directory of that path. Raises `OsFileEx::ExPathNotWritable` if the
    /// target is a file that cannot be written, or is this file itself. What was written before a
    /// failure stays.
    virtual void copyTo(const OsFilePath& target);

    const OsFilePath& getPath() const noexcept;

    /// Creates the file, or empties the one that is there. Raises `OsFileEx::ExFileExists` if
    /// `failIfExists` is set and there is one.
    void create(const OsFileTypes::Permissions& permissions, bool failIfExists);

    std::uint64_t getFullSize() const; ///< in bytes; 0 of a directory
    void setLastModificationTime(const OsDateTypes::DateRep& date);
    void setReadOnly(bool isReadOnly);

protected:
    void setPath(const OsFilePath& path);

    /// Opens the file, which must exist; others may read and write it meanwhile.
    /// @param mode 1 to read, 2 to write, added up
    OsFileTypes::Handle open(int mode) const;
    void close(OsFileTypes::Handle handle) const;

private:
    enum FileTime
    {
        LastModification,
        LastAccess
    };

    void checkPath() const;
    void checkExists() const;
    OsFilePath getCopyPath(const OsFilePath& target) const;

    // The system's part (osFileWindows)
    unsigned long performGetSize() const;
    ObjPtrRet<OsDateTypes::DateRep> performGetTime(FileTime which) const;
    ObjPtrRet<OsFileTypes::UnbufferedInfo> performGetUnbufferedInfo() const;
    int performGetAccess(int mask) const;
    OsFileTypes::ElementType performGetType() const;
    bool performExists() const;
    void performRemove() const;
    void performRename(const OsFilePath& target) const;

    OsFilePath _path;
};

} // namespace Kr

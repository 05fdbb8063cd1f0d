#pragma once

/// @file
/// A directory, named by its path: making, listing, emptying and removing it.
/// @code
/// Kr::OsDir renders(Kr::OsFilePath::getTempDir() + Kr::OsFilePath("viewer\\renders"));
/// renders.createAll();
/// for (const Kr::OsFilePath& path : renders.list(Kr::OsDirFilter::name("*.exr")))
///     Kr::OsFile(path).remove();
/// renders.removeAll();
/// @endcode
/// Nothing is open between calls. Every operation raises `OsFileEx::ExNullFilePath` for an empty
/// path, and `ExSysErrorWindows` when the system refuses. `OsDirWalker` goes through all that lies
/// below a directory.

#include <base/krBaseApi.h>
#include <base/osDirFilter.h>
#include <base/osFilePath.h>

#include <cstdint>
#include <vector>

namespace Kr
{

class KR_BASE_API OsDir
{
public:
    explicit OsDir(const OsFilePath& path);
    OsDir(const OsDir& other);
    OsDir& operator=(const OsDir& other);
    ~OsDir();

    const OsFilePath& getPath() const noexcept;

    bool exists() const; ///< whether there is a directory; false for a file
    bool isEmpty() const;

    /// Makes the directory. Raises `OsFileEx::ExFileExists` if anything has its path.
    void create();
    /// Makes the directory and those above it, as far as they are missing. Raises
    /// `OsFileEx::ExFileExists` if one of them is a file.
    void createAll();

    void remove(); ///< the directory, which must be empty
    /// Removes the directory with everything below it, read-only files too; what links lead to
    /// stays. What goes away meanwhile does not matter. Returns how many elements it has removed.
    std::uint64_t removeAll();

    /// The paths of the entries, in the byte-wise order of their names. Raises
    /// `OsFileEx::ExInvalidPath` if there is no directory.
    std::vector<OsFilePath> list(const OsDirFilter& filter = OsDirFilter()) const;

private:
    void checkPath() const;

    // The system's part (osDirWindows)
    bool performExists() const;
    bool performCreate() const; ///< false if there is something already
    void performRemove() const;
    static bool performRemoveElement(const char* path, bool isDirectory);

    OsFilePath _path;
};

} // namespace Kr

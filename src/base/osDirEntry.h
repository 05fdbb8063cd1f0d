#pragma once

/// @file
/// What a walk through directories meets.
/// @code
/// for (const Kr::OsDirEntry& entry : Kr::OsDirWalker("src")) // base/osDirWalker.h
///     if (entry.getType() == Kr::OsFileTypes::RegularFile)
///         std::cout << std::string(entry.getDepth(), ' ') << entry.getName() << '\n';
/// @endcode

#include <base/krBaseApi.h>
#include <base/osFilePath.h>
#include <base/osFileTypes.h>

#include <cstddef>
#include <string>

namespace Kr
{

/// Holds until the walk's next step; a copy keeps it.
class KR_BASE_API OsDirEntry
{
public:
    OsDirEntry();

    OsFilePath getPath() const;         ///< the root of the walk and what leads from it to here
    OsFilePath getRelativePath() const; ///< what leads from the root to here
    const std::string& getPathText() const noexcept; ///< the text of `getPath`, without a copy
    const char* getName() const noexcept;

    OsFileTypes::ElementType getType() const noexcept;
    bool isDirectory() const noexcept;
    bool isLink() const noexcept;       ///< what it leads to lies elsewhere
    unsigned getDepth() const noexcept; ///< 0 directly below the root

private:
    friend class OsDirWalker;

    std::string _path;
    std::size_t _relativeStart = 0;
    std::size_t _nameStart = 0;
    OsFileTypes::ElementType _type = OsFileTypes::OtherElement;
    unsigned _depth = 0;
    bool _isLink = false;
};

} // namespace Kr

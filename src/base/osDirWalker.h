#pragma once

/// @file
/// A walk through a directory and all below it.
/// @code
/// using Kr::OsDirFilter;
///
/// Kr::OsDirWalker walker("src", OsDirFilter::name("*.h"));
/// walker.setDescent(!OsDirFilter::name(".*")); // not into hidden directories
/// for (const Kr::OsDirEntry& entry : walker)
///     std::cout << entry.getPathText() << '\n';
/// @endcode
/// A directory comes before what is in it; within one directory the order is the system's. Links to
/// directories are met, but not walked into. What is added or removed meanwhile may or may not be
/// met; a directory that goes away is left, and the walk goes on with what is there.
///
/// A directory that the system does not let list raises `ExSysErrorWindows`; call `next` again to
/// go on without it. A walk holds one open handle for each level, and belongs to one thread.

#include <base/krBaseApi.h>
#include <base/osDirEntry.h>
#include <base/osDirFilter.h>
#include <base/osFilePath.h>

#include <cstddef>
#include <iterator>
#include <memory>

namespace Kr
{

class KR_BASE_API OsDirWalker
{
public:
    class Iterator;

    /// Raises `OsFileEx::ExNullFilePath` for an empty path, and `OsFileEx::ExInvalidPath` if there
    /// is nothing at it.
    /// @param filter which entries are met; what is below the others is met all the same
    explicit OsDirWalker(const OsFilePath& root, const OsDirFilter& filter = OsDirFilter());
    OsDirWalker(const OsDirWalker&) = delete;
    OsDirWalker& operator=(const OsDirWalker&) = delete;
    ~OsDirWalker();

    /// Which directories are walked into: all, unless set.
    void setDescent(const OsDirFilter& filter);

    bool next(); ///< moves to the first, or next, entry; false at the end
    const OsDirEntry& getEntry() const noexcept;

    Iterator begin(); ///< makes a step
    Iterator end();

private:
    struct Level;
    struct State;

    bool step();
    bool descend();
    void take(const Level& level);

    std::unique_ptr<State> _state;
};

/// A single-pass iterator over what is left of a walk.
class KR_BASE_API OsDirWalker::Iterator
{
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = OsDirEntry;
    using difference_type = std::ptrdiff_t;
    using pointer = const OsDirEntry*;
    using reference = const OsDirEntry&;

    explicit Iterator(OsDirWalker* walker) noexcept; ///< null: the end

    reference operator*() const noexcept;
    pointer operator->() const noexcept;
    Iterator& operator++();
    bool operator==(const Iterator& other) const noexcept;
    bool operator!=(const Iterator& other) const noexcept;

private:
    OsDirWalker* _walker;
};

} // namespace Kr

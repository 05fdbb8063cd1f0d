#include <base/osDirWalker.h>

#include <base/internal/os/osDirSearch.h>
#include <base/osFile.h>
#include <base/osFileEx.h>
#include <base/raise.h>

#include <utility>
#include <vector>

namespace Kr
{

OsDirEntry::OsDirEntry() = default;

OsFilePath OsDirEntry::getPath() const
{
    return _path;
}

OsFilePath OsDirEntry::getRelativePath() const
{
    return _path.c_str() + _relativeStart;
}

const std::string& OsDirEntry::getPathText() const noexcept
{
    return _path;
}

const char* OsDirEntry::getName() const noexcept
{
    return _path.c_str() + _nameStart;
}

OsFileTypes::ElementType OsDirEntry::getType() const noexcept
{
    return _type;
}

bool OsDirEntry::isDirectory() const noexcept
{
    return _type == OsFileTypes::Directory;
}

bool OsDirEntry::isLink() const noexcept
{
    return _isLink;
}

unsigned OsDirEntry::getDepth() const noexcept
{
    return _depth;
}

/// A directory on the way from the root to the entry.
struct OsDirWalker::Level
{
    OsDirSearch search;
    std::size_t nameStart = 0; ///< of its entries, in the path's text
};

struct OsDirWalker::State
{
    OsDirFilter filter;
    OsDirFilter descent;
    OsDirEntry entry;
    std::vector<Level> levels;
    bool isBegun = false;
    bool hasEntry = false; ///< the entry has been met, or at least looked at
};

OsDirWalker::OsDirWalker(const OsFilePath& root, const OsDirFilter& filter)
    : _state(std::make_unique<State>())
{
    if (!OsFile(root).exists()) // raises for an empty path
        raise<OsFileEx::ExInvalidPath>(KR_HERE, root.getChars());
    _state->filter = filter;
    _state->entry._path = root.getString();
}

OsDirWalker::~OsDirWalker() = default;

void OsDirWalker::setDescent(const OsDirFilter& filter)
{
    _state->descent = filter;
}

bool OsDirWalker::next()
{
    while (step())
        if (_state->filter.accepts(_state->entry))
            return true;
    return false;
}

/// Moves to the next entry, whether it is wanted or not.
bool OsDirWalker::step()
{
    const OsDirEntry& entry = _state->entry;
    const bool isInto = !_state->isBegun || (_state->hasEntry && entry.isDirectory() &&
                                             !entry.isLink() && _state->descent.accepts(entry));
    _state->isBegun = true;
    _state->hasEntry = false;
    if (isInto && descend())
        return true;
    while (!_state->levels.empty())
    {
        OsDirSearch& search = _state->levels.back().search;
        if (search.next())
        {
            take(_state->levels.back());
            return true;
        }
        _state->levels.pop_back();
    }
    return false;
}

/// Moves to the first entry of the directory that is the present one.
bool OsDirWalker::descend()
{
    std::string& path = _state->entry._path;
    Level level;
    if (!level.search.open(path.c_str()))
        return false;
    if (path.back() != '\\' && path.back() != '/')
        path += OsFilePath::getSeparator();
    level.nameStart = path.size();
    if (_state->levels.empty())
        _state->entry._relativeStart = level.nameStart;
    _state->levels.push_back(std::move(level));
    take(_state->levels.back());
    return true;
}

void OsDirWalker::take(const Level& level)
{
    OsDirEntry& entry = _state->entry;
    entry._path.resize(level.nameStart);
    entry._path += level.search.getName();
    entry._nameStart = level.nameStart;
    entry._type = level.search.getType();
    entry._isLink = level.search.isLink();
    entry._depth = static_cast<unsigned>(_state->levels.size() - 1);
    _state->hasEntry = true;
}

const OsDirEntry& OsDirWalker::getEntry() const noexcept
{
    return _state->entry;
}

OsDirWalker::Iterator OsDirWalker::begin()
{
    return Iterator(next() ? this : nullptr);
}

OsDirWalker::Iterator OsDirWalker::end()
{
    return Iterator(nullptr);
}

OsDirWalker::Iterator::Iterator(OsDirWalker* walker) noexcept
    : _walker(walker)
{
}

const OsDirEntry& OsDirWalker::Iterator::operator*() const noexcept
{
    return _walker->getEntry();
}

const OsDirEntry* OsDirWalker::Iterator::operator->() const noexcept
{
    return &_walker->getEntry();
}

OsDirWalker::Iterator& OsDirWalker::Iterator::operator++()
{
    if (!_walker->next())
        _walker = nullptr;
    return *this;
}

bool OsDirWalker::Iterator::operator==(const Iterator& other) const noexcept
{
    return _walker == other._walker;
}

bool OsDirWalker::Iterator::operator!=(const Iterator& other) const noexcept
{
    return _walker != other._walker;
}

} // namespace Kr

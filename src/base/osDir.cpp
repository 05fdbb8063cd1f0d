#include <base/osDir.h>

#include <base/internal/os/osDirSearch.h>
#include <base/osDirWalker.h>
#include <base/osFileEx.h>
#include <base/raise.h>

#include <algorithm>
#include <string>
#include <utility>

namespace Kr
{

OsDir::OsDir(const OsFilePath& path)
    : _path(path)
{
}

OsDir::OsDir(const OsDir& other) = default;
OsDir& OsDir::operator=(const OsDir& other) = default;
OsDir::~OsDir() = default;

const OsFilePath& OsDir::getPath() const noexcept
{
    return _path;
}

void OsDir::checkPath() const
{
    if (_path.isEmpty())
        raise<OsFileEx::ExNullFilePath>(KR_HERE);
}

bool OsDir::exists() const
{
    checkPath();
    return performExists();
}

bool OsDir::isEmpty() const
{
    checkPath();
    OsDirSearch search;
    return !search.open(_path.getChars());
}

void OsDir::create()
{
    checkPath();
    if (!performCreate())
        raise<OsFileEx::ExFileExists>(KR_HERE);
}

/// From the deepest directory that exists on down. Another process may make one at the same time.
void OsDir::createAll()
{
    std::vector<OsDir> missing;
    for (OsDir dir = *this; !dir.exists(); dir = OsDir(dir.getPath().getDirectoryName()))
    {
        if (!missing.empty() && dir.getPath() == missing.back().getPath())
            break; // the root of a drive that does not exist
        missing.push_back(dir);
    }
    for (; !missing.empty(); missing.pop_back())
        if (!missing.back().performCreate() && !missing.back().exists())
            raise<OsFileEx::ExFileExists>(KR_HERE);
}

void OsDir::remove()
{
    checkPath();
    performRemove();
}

/// The names are read before the first is removed, so that no listing changes under way. Goes
/// through the directories without recursion: a tree may be deeper than the stack.
std::uint64_t OsDir::removeAll()
{
    checkPath();
    if (!exists())
        raise<OsFileEx::ExInvalidPath>(KR_HERE, _path.getChars());
    struct Element
    {
        std::string path;
        bool isDirectory;
        bool isListed; ///< a directory whose entries stand behind it
    };
    std::vector<Element> elements{{_path.getString(), true, false}};
    std::uint64_t count = 0;
    while (!elements.empty())
    {
        Element& last = elements.back();
        if (last.isListed)
        {
            count += performRemoveElement(last.path.c_str(), last.isDirectory) ? 1 : 0;
            elements.pop_back();
            continue;
        }
        last.isListed = true;
        const std::string folder = last.path + OsFilePath::getSeparator();
        OsDirSearch search;
        for (bool found = search.open(last.path.c_str()); found; found = search.next())
        {
            const bool isDirectory = search.getType() == OsFileTypes::Directory;
            elements.push_back(
                {folder + search.getName(), isDirectory, !isDirectory || search.isLink()});
        }
    }
    return count;
}

std::vector<OsFilePath> OsDir::list(const OsDirFilter& filter) const
{
    std::vector<OsFilePath> paths;
    OsDirWalker walker(_path, filter);
    walker.setDescent(!OsDirFilter());
    for (const OsDirEntry& entry : walker)
        paths.push_back(entry.getPath());
    std::sort(paths.begin(), paths.end());
    return paths;
}

} // namespace Kr

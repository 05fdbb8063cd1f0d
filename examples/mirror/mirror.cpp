#include "mirror.h"

#include "progress.h"

#include <base/osDateUtil.h>
#include <base/osDir.h>
#include <base/osDirWalker.h>
#include <base/osFile.h>
#include <base/osFileReader.h>
#include <base/trace.h>

#include <algorithm>
#include <sstream>

namespace
{

constexpr std::size_t blockSize = 65536;

/// One cycle of a profiler, ended also by an exception.
class Cycle
{
public:
    explicit Cycle(Kr::ProfilerBase& profiler)
        : _profiler(profiler)
    {
        _profiler.start();
    }
    Cycle(const Cycle&) = delete;
    Cycle& operator=(const Cycle&) = delete;
    ~Cycle()
    {
        _profiler.stop();
        _profiler.endCycle();
    }

private:
    Kr::ProfilerBase& _profiler;
};

bool isEqual(const Kr::OsFilePath& lhs, const Kr::OsFilePath& rhs)
{
    Kr::OsFileReader left(lhs);
    Kr::OsFileReader right(rhs);
    std::vector<char> here(blockSize);
    std::vector<char> there(blockSize);
    for (;;)
    {
        const unsigned long size = left.read(here.data(), blockSize);
        if (right.read(there.data(), blockSize) != size ||
            !std::equal(here.begin(), here.begin() + static_cast<std::ptrdiff_t>(size),
                        there.begin()))
            return false;
        if (size == 0)
            return true;
    }
}

} // namespace

Mirror::Mirror(const Kr::OsFilePath& source, const Kr::OsFilePath& target)
    : _source(source)
    , _target(target)
    , _walking("walk")
    , _copying("copy a file")
    , _verifying("verify a file")
{
}

void Mirror::collect()
{
    const Cycle cycle(_walking);
    for (const Kr::OsDirEntry& entry : Kr::OsDirWalker(_source))
    {
        if (entry.isDirectory() && !entry.isLink())
            _directories.push_back(entry.getRelativePath());
        else if (entry.getType() == Kr::OsFileTypes::RegularFile)
        {
            const std::uint64_t size = Kr::OsFile(entry.getPath()).getFullSize();
            _files.push_back({entry.getRelativePath(), size});
            _bytes += size;
        }
    }
}

void Mirror::copy()
{
    Kr::OsDir(_target).createAll();
    for (const Kr::OsFilePath& directory : _directories)
        Kr::OsDir(_target + directory).createAll();
    Progress progress("copied", _bytes);
    for (const File& file : _files)
    {
        copyFile(file);
        progress.add(file.size);
    }
    progress.finish();
}

void Mirror::copyFile(const File& file)
{
    const Cycle cycle(_copying);
    Kr::OsFile original(_source + file.path);
    Kr::OsFile copied(_target + file.path);
    original.copyTo(copied.getPath());
    const Kr::ObjPtr<Kr::OsDateTypes::DateRep> date(original.getLastModificationTime());
    copied.setLastModificationTime(*date);
}

void Mirror::verify()
{
    Progress progress("verified", _bytes);
    for (const File& file : _files)
    {
        const Cycle cycle(_verifying);
        const Kr::OsFilePath copied = _target + file.path;
        if (!isEqual(_source + file.path, copied))
            Kr::raise<Kr::ExInternalError>(KR_HERE, ("differs: " + copied.getUri()).c_str());
        progress.add(file.size);
    }
    progress.finish();
}

std::string Mirror::describe() const
{
    std::ostringstream text;
    text << _files.size() << " files in " << _directories.size() + 1 << " directories, "
         << describeBytes(static_cast<double>(_bytes));
    return text.str();
}

std::vector<const Kr::ProfilerBase*> Mirror::getProfilers() const
{
    return {&_walking, &_copying, &_verifying};
}

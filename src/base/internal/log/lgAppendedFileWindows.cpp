#include <base/internal/log/lgAppendedFile.h>

#include <base/internal/log/lgFolder.h>

#include <platform/logFile.h>

#include <algorithm>
#include <string_view>

namespace Kr
{

namespace
{

constexpr std::size_t maxRetired = 8; // open files that wait for a sync
constexpr unsigned streamPatience = 1000;

/// Gives the lock up at the end of a block.
class Release
{
public:
    explicit Release(LgInterProcessLock& lock)
        : _lock(lock)
    {
    }

    Release(const Release&) = delete;
    Release& operator=(const Release&) = delete;

    ~Release() { _lock.release(); }

private:
    LgInterProcessLock& _lock;
};

} // namespace

LgAppendedFile::LgAppendedFile(const LgFileSettings& settings)
    : _settings(settings)
    , _folder(LgFolder::getFolder(settings.path))
    , _lock(settings.path)
{
    _retired.reserve(maxRetired + 1);
}

LgAppendedFile::~LgAppendedFile() = default;

/// Another process may have rotated the file between the opening and the lock: then the lock is
/// given up and the new file opened, as often as that happens.
LgAppendedFile::Outcome LgAppendedFile::append(const char* text, std::size_t size,
                                               std::chrono::milliseconds patience,
                                               std::size_t& taken)
{
    constexpr int maxAttempts = 100;
    for (int attempt = 1;; ++attempt)
    {
        if (!open())
            return failed();
        if (_file->isStream())
            return finish(taken = writeStream(text, size), size);
        const auto locked =
            _settings.isLocked ? _lock.acquire(patience) : LgInterProcessLock::Outcome::held;
        const Release release(_lock);
        if (locked == LgInterProcessLock::Outcome::busy)
            return Outcome::busy;
        const bool isAlone = locked == LgInterProcessLock::Outcome::held;
        const bool wantsNew = !isCurrent() || (isAlone && !hasRoom(size) && rotate());
        if (!wantsNew)
            return finish(taken = write(text, size, isAlone), size);
        retire();
        if (attempt == maxAttempts)
            return Outcome::busy;
    }
}

bool LgAppendedFile::open()
{
    if (_file != nullptr)
        return true;
    if (!LgFolder::makeAbove(_settings.path, _settings.privateFolder))
        return false;
    auto file = std::make_unique<KrLogFile>();
    if (!file->open(_settings.path.c_str(), true))
        return false;
    _file = std::move(file);
    _knownEnd = 0;
    _hasNewNames = true;
    return true;
}

bool LgAppendedFile::isCurrent() const
{
    return _file->isAt(_settings.path.c_str());
}

bool LgAppendedFile::hasRoom(std::size_t size) const
{
    const std::int64_t used = _file->getSize();
    return _settings.maxSize == 0 || used <= 0 ||
           static_cast<std::uint64_t>(used) + size <= _settings.maxSize;
}

/// Moves each file on by one number up to the first that is free, or over the oldest. Where one
/// cannot be moved those below it stay, and the numbers above it are not moved again.
bool LgAppendedFile::rotate() const
{
    int free = 1;
    while (free < _settings.keptFiles && krLogExists(getRotatedPath(free).c_str()))
        ++free;
    for (int number = free; number > 0; --number)
        if (!krMoveLog(getRotatedPath(number - 1).c_str(), getRotatedPath(number).c_str()))
            return false;
    return true;
}

std::string LgAppendedFile::getRotatedPath(int number) const
{
    return number == 0 ? _settings.path : _settings.path + '.' + std::to_string(number);
}

/// A file that has been moved away is kept until it is on the disk, unless it was removed: it may
/// hold what the next fatal error wants there.
void LgAppendedFile::retire()
{
    if (_isWritten)
        _retired.push_back(std::move(_file));
    _file.reset();
    const auto isGone = [](const std::unique_ptr<KrLogFile>& file) { return file->isRemoved(); };
    _retired.erase(std::remove_if(_retired.begin(), _retired.end(), isGone), _retired.end());
    if (_retired.size() <= maxRetired)
        return;
    _retired.front()->sync();
    _retired.erase(_retired.begin());
}

std::size_t LgAppendedFile::write(const char* text, std::size_t size, bool isAlone)
{
    if (!endHalfLine())
        return 0;
    const std::int64_t before = _file->getSize();
    if (before < 0) // where to cut if the text finds no room
    {
        _problem.take();
        return 0;
    }
    const std::size_t written = _file->append(text, size, 0);
    _isWritten = _isWritten || written != 0;
    _knownEnd = before + static_cast<std::int64_t>(written == size ? size : 0);
    if (written == size)
        return size;
    _problem.take();
    if (isAlone && _file->cut(before))
        return 0;
    // Others may have written behind it already: what is whole stays, and whoever comes next ends
    // the line that is not.
    return std::string_view(text, written).rfind('\n') + 1;
}

/// A process that was killed, or a disk without room, may have left a part of a line.
bool LgAppendedFile::endHalfLine()
{
    const std::int64_t end = _file->getSize();
    char last = '\n';
    if (end <= 0 || end == _knownEnd || !_file->read(end - 1, &last, 1) || last == '\n')
        return true;
    const bool isEnded = _file->append("\n", 1, 0) == 1;
    if (!isEnded)
        _problem.take();
    return isEnded;
}

/// The first failure may take a while, those after it are told at once.
std::size_t LgAppendedFile::writeStream(const char* text, std::size_t size)
{
    const std::size_t written = _file->append(text, size, _isStuck ? 0 : streamPatience);
    _isStuck = written != size;
    if (!_isStuck)
        return written;
    _problem.take();
    if (!isCurrent())
        _file.reset();
    return written;
}

LgAppendedFile::Outcome LgAppendedFile::finish(std::size_t taken, std::size_t size)
{
    return taken == size ? Outcome::done : Outcome::failed;
}

LgAppendedFile::Outcome LgAppendedFile::failed()
{
    _problem.take();
    return _problem.isInUse() ? Outcome::busy : Outcome::failed;
}

bool LgAppendedFile::sync() noexcept
{
    bool isDone = true;
    const auto syncOne = [&](const std::unique_ptr<KrLogFile>& file)
    {
        if (file == nullptr || file->sync())
            return;
        _problem.take();
        isDone = false;
    };
    std::for_each(_retired.begin(), _retired.end(), syncOne);
    _retired.clear();
    if (_isWritten)
        syncOne(_file);
    if (_hasNewNames && !krSyncLogFolder(_folder.c_str()))
    {
        _problem.take();
        isDone = false;
    }
    _isWritten = _isWritten && !isDone;
    _hasNewNames = _hasNewNames && !isDone;
    return isDone;
}

bool LgAppendedFile::isFar() const noexcept
{
    return _file == nullptr || _file->isFar();
}

void LgAppendedFile::rest()
{
    if (_file != nullptr && !isCurrent())
        retire();
}

void LgAppendedFile::leave() noexcept
{
    _lock.remove();
}

} // namespace Kr

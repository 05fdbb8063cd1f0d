#include <base/internal/log/lgExclusiveFile.h>

#include <base/internal/log/lgFolder.h>

#include <platform/logFile.h>

#include <new>

namespace Kr
{

namespace
{

constexpr std::size_t maxRemoved = 64;

} // namespace

LgExclusiveFile::LgExclusiveFile(const LgFileSettings& settings)
    : _settings(settings)
    , _lock(settings.path)
{
}

LgExclusiveFile::~LgExclusiveFile()
{
    if (_file != nullptr)
        _lock.remove();
}

std::size_t LgExclusiveFile::append(const char* text, std::size_t size) noexcept
{
    return replaceEnd(0, text, size) ? size : 0;
}

/// What stood there is written back if the text finds no room; its own room it has.
bool LgExclusiveFile::replaceEnd(std::size_t removed, const char* text, std::size_t size) noexcept
{
    if (!open())
        return false;
    char saved[maxRemoved];
    const std::int64_t before = _file->getSize();
    const std::int64_t start = before - static_cast<std::int64_t>(removed);
    if (removed > maxRemoved || start < 0 || before < 0)
        return failed();
    if (removed != 0 && !_file->read(start, saved, removed))
        return failed();
    if (_file->write(start, text, size) && _file->cut(start + static_cast<std::int64_t>(size)))
        return true;
    static_cast<void>(failed());
    if (removed == 0 || _file->write(start, saved, removed))
        static_cast<void>(_file->cut(before));
    return false;
}

bool LgExclusiveFile::isFar() const noexcept
{
    return _file == nullptr || _file->isFar();
}

bool LgExclusiveFile::sync() noexcept
{
    return _file == nullptr || _file->sync() || failed();
}

bool LgExclusiveFile::open()
{
    if (_file != nullptr)
        return true;
    try
    {
        auto file = std::make_unique<KrLogFile>();
        if (!LgFolder::makeAbove(_settings.path, _settings.privateFolder) ||
            !file->open(_settings.path.c_str(), false, true))
            return failed();
        if (!makeAnew(*file))
            return false;
        _file = std::move(file);
        return true;
    }
    catch (const std::bad_alloc&)
    {
        _problem.setNoMemory();
        return false;
    }
}

/// Only when it is this process's alone: what another one writes is not cut off.
bool LgExclusiveFile::makeAnew(KrLogFile& file)
{
    if (file.isStream())
    {
        _problem.setNotAFile();
        return false;
    }
    const LgInterProcessLock::Outcome outcome = _lock.acquire(std::chrono::milliseconds(0));
    if (outcome == LgInterProcessLock::Outcome::impossible)
        return failed();
    const bool isOurs = outcome == LgInterProcessLock::Outcome::held;
    if (isOurs && file.isAt(_settings.path.c_str()) && file.cut(0))
        return true;
    _lock.release();
    _problem.setInUse();
    return false;
}

/// Keeps the reason of a failed call; false, for the caller to return.
bool LgExclusiveFile::failed() noexcept
{
    _problem.take();
    return false;
}

} // namespace Kr

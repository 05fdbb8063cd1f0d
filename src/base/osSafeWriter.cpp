#include <base/osSafeWriter.h>

#include <base/exSysError.h>
#include <base/internal/os/osFsUtilsWindows.h>
#include <base/osFileEx.h>
#include <base/raise.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <string>
#include <thread>

namespace Kr
{

namespace
{

const OsFilePath& checkTarget(const OsFilePath& target)
{
    if (target.isEmpty())
        raise<OsFileEx::ExNullFilePath>(KR_HERE);
    if (OsFsUtilsWindows::isProtected(target))
        raise<OsFileEx::ExPathNotWritable>(KR_HERE, target.getChars());
    return target;
}

/// A name beside the target that nothing has: of this process, this moment. A process that was
/// killed may have left one with the same number.
OsFilePath makeTemporaryPath(const OsFilePath& target)
{
    static std::atomic<unsigned> count{0};
    return target.getString() + ".~" + std::to_string(OsFsUtilsWindows::getProcessNumber()) + '-' +
           std::to_string(count.fetch_add(1, std::memory_order_relaxed));
}

/// Creates an empty file of a new name.
OsFilePath createTemporaryFile(const OsFilePath& target)
{
    constexpr int maxAttempts = 1000;
    for (int attempt = 1;; ++attempt)
    {
        OsFilePath path = makeTemporaryPath(target);
        try
        {
            OsFsUtilsWindows::createFile(path.getChars(), true);
            return path;
        }
        catch (const OsFileEx::ExFileExists&)
        {
            if (attempt == maxAttempts)
                throw;
        }
    }
}

} // namespace

OsSafeWriter::OsSafeWriter(const OsFilePath& target)
    : _path(checkTarget(target))
    , _patience(1.)
    , _state(State::Open)
    , _writer(createTemporaryFile(target), OsFileTypes::Permissions(3, 3, 0), false)
{
}

OsSafeWriter::~OsSafeWriter()
{
    try
    {
        if (_state == State::Open)
            _writer.close();
    }
    catch (const ExBase&)
    {
        // The content is given up anyway.
    }
    if (_state != State::Committed)
        OsFsUtilsWindows::removeFile(_writer.getPath());
}

void OsSafeWriter::checkState(State last) const
{
    if (_state <= last)
        return;
    errno = EBADF;
    raise<ExSysErrorANSI>(KR_HERE);
}

void OsSafeWriter::write(const void* buffer, unsigned long count)
{
    checkState(State::Open);
    const char* from = static_cast<const char*>(buffer);
    while (count != 0)
    {
        const unsigned long written = _writer.write(from, count);
        if (written == 0)
            raise<ExSysErrorWindows>(KR_HERE); // the end of the medium: the last error says so
        from += written;
        count -= written;
    }
}

void OsSafeWriter::commit()
{
    checkState(State::Complete);
    if (_state == State::Open)
    {
        _writer.flush();
        _writer.close();
        _state = State::Complete;
    }
    if (!replace())
        raise<ExSysErrorWindows>(KR_HERE);
    _state = State::Committed;
}

/// Tries for as long as others hold the target and the patience lasts. False with the last error
/// set.
bool OsSafeWriter::replace() const
{
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::milliseconds pause(5);
    const auto end = Clock::now() + std::chrono::duration<double>(_patience);
    while (!OsFsUtilsWindows::replaceFile(_writer.getPath(), _path))
    {
        if (!OsFsUtilsWindows::isInUse() || Clock::now() >= end)
            return false;
        std::this_thread::sleep_for(pause);
    }
    return true;
}

const OsFilePath& OsSafeWriter::getPath() const noexcept
{
    return _path;
}

double OsSafeWriter::setPatience(double seconds) noexcept
{
    const double previous = _patience;
    _patience = seconds;
    return previous;
}

} // namespace Kr

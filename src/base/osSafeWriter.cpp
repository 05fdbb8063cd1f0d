#include <base/osSafeWriter.h>

#include <base/exSysError.h>
#include <base/internal/os/osFsUtilsWindows.h>
#include <base/osFileEx.h>
#include <base/raise.h>

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

OsFilePath getTemporaryPath(const OsFilePath& target, int number)
{
    return target.getString() + ".~unsaved" + std::to_string(number);
}

} // namespace

/// A temporary file beside the target, which is removed at the end unless it was moved away. Its
/// handle is open for as long as the file bears that name: what nobody has open has been left
/// behind by a process that was killed.
class OsSafeWriter::Claim
{
public:
    explicit Claim(const OsFilePath& target);
    Claim(const Claim&) = delete;
    Claim& operator=(const Claim&) = delete;
    ~Claim();

    const OsFilePath& getPath() const noexcept { return _path; }
    void setMoved() noexcept { _isMoved = true; }

private:
    OsFilePath _path;
    OsFileTypes::Handle _handle = OsFileTypes::invalidHandle;
    bool _isMoved = false;
};

OsSafeWriter::Claim::Claim(const OsFilePath& target)
{
    constexpr int maxNumber = 100;
    int number = 0;
    for (; _handle == OsFileTypes::invalidHandle; ++number)
    {
        _path = getTemporaryPath(target, number);
        OsFsUtilsWindows::removeAbandoned(_path);
        _handle = OsFsUtilsWindows::claim(_path);
        if (_handle == OsFileTypes::invalidHandle &&
            (!OsFsUtilsWindows::isTaken() || number == maxNumber))
            raise<ExSysErrorWindows>(KR_HERE);
    }
    while (OsFsUtilsWindows::removeAbandoned(getTemporaryPath(target, number)))
        ++number;
}

OsSafeWriter::Claim::~Claim()
{
    OsFsUtilsWindows::close(_handle);
    if (!_isMoved)
        OsFsUtilsWindows::removeAbandoned(_path);
}

OsSafeWriter::OsSafeWriter(const OsFilePath& target)
    : _path(checkTarget(target))
    , _patience(1.)
    , _state(State::Open)
    , _claim(std::make_unique<Claim>(target))
    , _writer(_claim->getPath(), OsFileTypes::Permissions(3, 3, 0), false)
{
    OsFsUtilsWindows::copyProtection(_path, _claim->getPath());
}

OsSafeWriter::~OsSafeWriter() = default; // closes the writer before the claim removes its file

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
    _claim->setMoved();
    _claim.reset();
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

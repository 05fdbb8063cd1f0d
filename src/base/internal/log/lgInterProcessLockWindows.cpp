#include <base/internal/log/lgInterProcessLock.h>

#include <platform/logFile.h>

#include <thread>

namespace Kr
{

LgInterProcessLock::LgInterProcessLock(const std::string& path)
    : _lock(std::make_unique<KrFileLock>(path + ".lock"))
{
}

LgInterProcessLock::~LgInterProcessLock()
{
    release();
}

LgInterProcessLock::Outcome LgInterProcessLock::acquire(std::chrono::milliseconds patience) noexcept
{
    const auto deadline = std::chrono::steady_clock::now() + patience;
    for (;;)
    {
        const KrFileLock::Outcome outcome = _lock->tryAcquire();
        _isHeld = outcome == KrFileLock::Outcome::held;
        if (_isHeld)
            return Outcome::held;
        if (outcome == KrFileLock::Outcome::impossible)
            return Outcome::impossible;
        if (std::chrono::steady_clock::now() >= deadline)
            return Outcome::busy;
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
}

void LgInterProcessLock::release() noexcept
{
    if (_isHeld)
        _lock->release();
    _isHeld = false;
}

void LgInterProcessLock::remove() noexcept
{
    if (_isHeld || _lock->tryAcquire() == KrFileLock::Outcome::held)
        _lock->remove();
    _isHeld = false;
}

} // namespace Kr

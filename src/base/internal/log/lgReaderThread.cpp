#include <base/internal/log/lgReaderThread.h>

#include <algorithm>
#include <exception>

namespace Kr
{

namespace
{

// The thread looks often while there is something to do and for a while after, since bursts come in
// rows, and seldom when there is not.
constexpr std::chrono::milliseconds shortestPause(1);
constexpr std::chrono::milliseconds longestPause(16);
constexpr int patience = 16; // looks

} // namespace

LgReaderThread::LgReaderThread(Drain drain)
    : _drain(drain)
{
}

void LgReaderThread::start() noexcept
{
    if (_thread.joinable())
        return;
    _isStopping = false;
    try
    {
        _thread = std::thread([this] { run(); });
        _isStarted = true;
    }
    catch (const std::exception&)
    {
        // Without a thread to spare, or memory for it, the log is drained by flushes and at the
        // end.
    }
}

void LgReaderThread::stop()
{
    if (!_thread.joinable())
        return;
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _isStopping = true;
    }
    _changed.notify_one();
    _thread.join();
    _isStarted = false;
}

/// The lock makes sure that the thread is not just between its look at the flag and its wait.
void LgReaderThread::wake() noexcept
{
    if (_isWoken.load(std::memory_order_relaxed) || _isWoken.exchange(true))
        return;
    {
        const std::lock_guard<std::mutex> lock(_mutex);
    }
    _changed.notify_one();
}

void LgReaderThread::run()
{
    std::chrono::milliseconds pause = shortestPause;
    int idleLooks = 0;
    while (waitFor(pause))
    {
        idleLooks = _drain() != 0 ? 0 : idleLooks + 1;
        pause = idleLooks < patience ? shortestPause : std::min(2 * pause, longestPause);
    }
}

/// Returns false when the thread is to end.
bool LgReaderThread::waitFor(std::chrono::milliseconds pause)
{
    std::unique_lock<std::mutex> lock(_mutex);
    _changed.wait_for(lock, pause, [this] { return _isStopping || _isWoken; });
    _isWoken = false;
    return !_isStopping;
}

} // namespace Kr

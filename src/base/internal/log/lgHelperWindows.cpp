#include <base/internal/log/lgHelper.h>

#include <base/internal/log/lgThread.h>

#include <platform/logFile.h>

#include <condition_variable>
#include <exception>
#include <mutex>

namespace Kr
{

/// Where errands are handed over.
struct LgHelper::Desk
{
    std::mutex mutex; // guards what follows
    std::condition_variable changed;
    std::shared_ptr<Errand> errand; ///< null: none, or it is done
    bool isClosed = false;
};

LgHelper::Errand::~Errand() = default;

void LgHelper::Errand::run() noexcept
{
    perform();
    _isDone.store(true, std::memory_order_release);
}

LgHelper::~LgHelper()
{
    if (_desk == nullptr)
        return;
    close();
    _thread.join();
}

bool LgHelper::run(const std::shared_ptr<Errand>& errand,
                   std::chrono::milliseconds patience) noexcept
{
    errand->_isDone.store(false, std::memory_order_relaxed);
    if (krIsLastThread() || !start())
    {
        errand->run();
        return true;
    }
    {
        const std::lock_guard<std::mutex> lock(_desk->mutex);
        _desk->errand = errand;
    }
    _desk->changed.notify_one();
    {
        std::unique_lock<std::mutex> lock(_desk->mutex);
        if (_desk->changed.wait_for(lock, patience, [this] { return _desk->errand == nullptr; }))
            return true;
    }
    close();
    krKeepLibrary(); // the thread may come back at any time
    _thread.detach();
    _desk.reset();
    return false;
}

/// Whether there is a thread.
bool LgHelper::start() noexcept
{
    if (_desk != nullptr)
        return true;
    try
    {
        auto desk = std::make_shared<Desk>();
        _thread = std::thread([desk] { serve(desk); });
        _desk = std::move(desk);
    }
    catch (const std::exception&)
    {
        // No thread to spare, or no memory for it.
    }
    return _desk != nullptr;
}

/// Has the thread end when it has done what it is doing.
void LgHelper::close() noexcept
{
    {
        const std::lock_guard<std::mutex> lock(_desk->mutex);
        _desk->isClosed = true;
    }
    _desk->changed.notify_one();
}

/// What is logged while an errand is run would be its own next text.
void LgHelper::serve(const std::shared_ptr<Desk>& desk) noexcept
{
    LgThread::get().isInOutput = true;
    std::unique_lock<std::mutex> lock(desk->mutex);
    for (;;)
    {
        desk->changed.wait(lock, [&] { return desk->errand != nullptr || desk->isClosed; });
        if (desk->errand == nullptr)
            return;
        std::shared_ptr<Errand> errand = desk->errand;
        lock.unlock();
        errand->run();
        lock.lock();
        desk->errand.reset();
        desk->changed.notify_one();
        lock.unlock();
        errand.reset(); // which may close what nobody waits for any more
        lock.lock();
    }
}

} // namespace Kr

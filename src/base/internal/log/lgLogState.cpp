#include <base/internal/log/lgLogState.h>

#include <base/internal/log/lgProcess.h>
#include <base/internal/log/lgProducer.h>

#include <atomic>
#include <chrono>
#include <exception>
#include <mutex>
#include <optional>
#include <thread>

namespace Kr
{

namespace
{

/// Never destroyed: threads may log while the process ends.
struct State
{
    std::mutex draining; // held by whoever drains; taken before `pointer`
    std::mutex pointer;  // guards `session` against those who add to it
    LgSession* session = nullptr;
    std::atomic<std::uint32_t> number{0}; // of the session; 0 while there is none
    std::uint32_t lastNumber = 0;
    std::atomic<std::uint64_t> lost{0};
    std::atomic<bool> isBlocking{false};
    std::atomic<unsigned long> mainThread{0}; // the one that started the session
    LgProducer* mainProducer = nullptr;
    bool isMainForking = false;
    std::terminate_handler previousHandler = nullptr;
};

State& state()
{
    static State& instance = *new State;
    return instance;
}

// Plain thread-locals, which can be looked at while the thread ends.
thread_local LgProducer* producer = nullptr;
thread_local bool isEnded = false;
thread_local bool isDraining = false;

bool isMainThread()
{
    return LgProcess::getThreadId() == state().mainThread;
}

/// Ends the producer of its thread. That of the main thread lives on with the session: static
/// objects may log while they are destroyed.
struct ProducerEnd
{
    ProducerEnd() = default;
    ProducerEnd(const ProducerEnd&) = delete;
    ProducerEnd& operator=(const ProducerEnd&) = delete;

    ~ProducerEnd()
    {
        if (producer == nullptr || (isMainThread() && state().number != 0))
            return;
        isEnded = true;
        LgLogState::endProducer();
    }

    void arm() {}
};

thread_local ProducerEnd producerEnd;

/// Keeps the output path from logging into what it drains.
class OutputGuard
{
public:
    OutputGuard()
    {
        LgQueue* queue = producer != nullptr ? producer->findQueue() : nullptr;
        if (queue != nullptr)
            _suppress.emplace(*queue);
        isDraining = true;
    }

    OutputGuard(const OutputGuard&) = delete;
    OutputGuard& operator=(const OutputGuard&) = delete;

    ~OutputGuard() { isDraining = false; }

private:
    std::optional<LgQueue::SuppressGuard> _suppress;
};

/// Drains; the caller holds the lock.
std::size_t drainSession(LgDrain how) noexcept
{
    LgSession* session = state().session;
    if (session == nullptr)
        return 0;
    const OutputGuard guard;
    try
    {
        return session->drain(how);
    }
    catch (const std::exception&)
    {
        LgLogState::countLost(1); // memory is short: the others wait
        return 0;
    }
}

std::size_t drainToBuffers() noexcept
{
    return LgLogState::drain(LgDrain::toBuffers);
}

[[noreturn]] void onTerminate()
{
    LgLogState::drainAtEnd(LgDrain::toDisk);
    if (state().previousHandler != nullptr)
        state().previousHandler();
    std::abort();
}

void beforeFork()
{
    state().isMainForking = isMainThread();
    if (!isDraining)
    {
        state().draining.lock();
        drainSession(LgDrain::toSystem);
    }
    state().pointer.lock();
}

void inParent()
{
    state().pointer.unlock();
    if (!isDraining)
        state().draining.unlock();
}

/// The other threads are gone, and what they logged is the parent's: a new session begins.
void inChild()
{
    if (state().session != nullptr)
    {
        state().session = LgSession::forFork(state().session);
        state().number = ++state().lastNumber;
    }
    if (state().isMainForking)
        state().mainThread = LgProcess::getThreadId();
    inParent();
}

void installHandlers()
{
    static const bool isHandlingForks = (LgProcess::onFork(beforeFork, inParent, inChild), true);
    static_cast<void>(isHandlingForks);
    const std::terminate_handler previous = std::set_terminate(onTerminate);
    if (previous != onTerminate)
        state().previousHandler = previous;
}

/// The library may be unloaded after it has stopped.
void removeTerminateHandler()
{
    if (std::get_terminate() == onTerminate)
        std::set_terminate(state().previousHandler);
}

/// Joins the calling thread to the session of that number; null if memory is short.
LgProducer* join(std::uint32_t number) noexcept
{
    if (producer == nullptr)
        producer = new (std::nothrow) LgProducer(isEnded);
    if (producer == nullptr)
        return nullptr;
    if (!isEnded)
        producerEnd.arm();
    const bool isMain = isMainThread();
    producer->join(number, isMain ? 0 : LgProcess::getThreadId());
    const std::lock_guard<std::mutex> lock(state().pointer);
    if (isMain)
        state().mainProducer = producer;
    if (state().number == number)
        state().session->startReader(drainToBuffers);
    return producer;
}

} // namespace

LgProducer* LgLogState::getProducer() noexcept
{
    const std::uint32_t number = state().number.load(std::memory_order_acquire);
    if (number == 0 || isDraining)
        return nullptr;
    if (producer != nullptr && producer->getSessionNumber() == number)
        return producer;
    return join(number);
}

LgProducer* LgLogState::getLastingProducer() noexcept
{
    return isEnded ? nullptr : getProducer();
}

void LgLogState::endProducer() noexcept
{
    if (producer == state().mainProducer)
        state().mainProducer = nullptr;
    producer->end();
    delete producer;
    producer = nullptr;
}

bool LgLogState::addQueue(std::uint32_t sessionNumber, const std::shared_ptr<LgQueue>& queue)
{
    const std::lock_guard<std::mutex> lock(state().pointer);
    if (state().number != sessionNumber)
        return false;
    state().session->getRegistry().addQueue(queue);
    return true;
}

bool LgLogState::addRing(std::uint32_t sessionNumber, const std::shared_ptr<LgSpanRing>& ring)
{
    const std::lock_guard<std::mutex> lock(state().pointer);
    if (state().number != sessionNumber || state().session->getTimeline() == nullptr)
        return false;
    state().session->getTimeline()->addRing(ring);
    return true;
}

bool LgLogState::isBlocking() noexcept
{
    return state().isBlocking;
}

bool LgLogState::mayDrain() noexcept
{
    return !isDraining && state().number != 0;
}

std::size_t LgLogState::drain(LgDrain how) noexcept
{
    if (isDraining)
        return 0;
    const std::lock_guard<std::mutex> lock(state().draining);
    return drainSession(how);
}

void LgLogState::drainAtEnd(LgDrain how) noexcept
{
    if (isDraining)
        return;
    std::unique_lock<std::mutex> lock(state().draining, std::defer_lock);
    for (int milliseconds = 0; !lock.try_lock(); ++milliseconds)
    {
        if (milliseconds == 1000)
            return;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    drainSession(how);
}

void LgLogState::countLost(std::uint64_t count) noexcept
{
    state().lost.fetch_add(count, std::memory_order_relaxed);
}

void LgLogState::start(std::unique_ptr<LgSession> session)
{
    installHandlers();
    const std::scoped_lock lock(state().draining, state().pointer);
    state().isBlocking = session->getSettings().isBlocking;
    state().mainThread = LgProcess::getThreadId();
    state().session = session.release();
    state().number = ++state().lastNumber;
}

/// The number goes first, so that nothing new is logged and no reader started. Messages that were
/// being written just then are given a second chance.
void LgLogState::stop()
{
    {
        const std::lock_guard<std::mutex> lock(state().pointer);
        state().number = 0;
    }
    if (state().session == nullptr)
        return;
    state().session->stopReader();
    removeTerminateHandler();
    const std::lock_guard<std::mutex> draining(state().draining);
    drainSession(LgDrain::toSystem);
    drainSession(LgDrain::toSystem);
    const std::lock_guard<std::mutex> lock(state().pointer);
    const std::unique_ptr<LgSession> session(state().session);
    state().session = nullptr;
    session->close();
    countLost(session->getLostCount());
}

std::uint64_t LgLogState::getLostCount()
{
    const std::lock_guard<std::mutex> lock(state().pointer);
    const std::uint64_t inSession =
        state().session != nullptr ? state().session->getLostCount() : 0;
    return state().lost + inSession;
}

LgSettings LgLogState::getSettings()
{
    const std::lock_guard<std::mutex> lock(state().pointer);
    return state().session != nullptr ? state().session->getSettings() : LgSettings();
}

} // namespace Kr

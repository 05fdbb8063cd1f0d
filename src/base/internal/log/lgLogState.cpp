#include <base/internal/log/lgLogState.h>

#include <base/internal/errors/immortal.h>
#include <base/internal/errors/processIdentity.h>
#include <base/internal/log/lgLosses.h>
#include <base/internal/log/lgReaderThread.h>
#include <base/internal/log/lgSpareQueues.h>
#include <base/internal/log/lgStandardStream.h>
#include <base/internal/log/lgThread.h>
#include <base/internal/log/lgTry.h>

#include <atomic>
#include <chrono>
#include <exception>
#include <mutex>
#include <new>
#include <numeric>
#include <thread>

namespace Kr
{

namespace
{

std::size_t drainToBuffers() noexcept
{
    return LgLogState::drain(LgDrain::toBuffers);
}

/// Threads may log while the process ends.
struct State
{
    std::mutex draining; // held by whoever drains; taken before `pointer`
    std::mutex pointer;  // guards `session` against those who add to it
    std::atomic<LgSession*> session{nullptr};
    LgSession* forkedFrom = nullptr; // the parent's, where there was no memory for one yet
    std::uint32_t lastNumber = 0;
    std::uint64_t cut = 0; // in sessions that have ended
    std::atomic<bool> isBlocking{false};
    std::atomic<unsigned long> mainThread{0}; // the one that started the session
    LgReaderThread readerThread{drainToBuffers};
};

State& state()
{
    static Immortal<State> instance;
    return *instance;
}

/// The caller holds the lock.
std::size_t drainSession(LgDrain how) noexcept
{
    LgSession* session = state().session;
    if (session == nullptr)
        return 0;
    const LgThread::OutputGuard guard;
    return session->drain(how);
}

/// Blocking threads need no other queue, and those that outlive the process are each made for
/// theirs.
void keepSpares(LgSession& session) noexcept
{
    if (!session.getSettings().isBlocking && session.getKeptRings() == nullptr)
        session.getRegistry().keepSpares(LgLogState::wakeReader);
}

/// The session; made now where there was no memory for it when the process was forked. The caller
/// holds the lock of the pointer.
LgSession* findSession() noexcept
{
    if (state().forkedFrom == nullptr)
        return state().session;
    try
    {
        LgSession* const session = LgSession::forFork(state().forkedFrom);
        keepSpares(*session);
        state().session = session;
        state().forkedFrom = nullptr;
    }
    catch (const std::exception&)
    {
        // What is logged meanwhile is counted, and told when there is a session.
    }
    return state().session;
}

/// What a forked process has lost that never had the memory for a session.
void tellOnErrorStream() noexcept
{
    const LgQueue::Counts counts = LgLosses::takeUntold();
    const auto lost = std::accumulate(counts.begin(), counts.end(), std::uint64_t{0});
    if (lost != 0)
        lgTry(
            [lost] {
                LgStandardStream::complain(std::to_string(lost) +
                                           " messages were lost for want of memory\n");
            });
}

} // namespace

std::atomic<std::uint32_t> LgLogState::_number{0};

bool LgLogState::isAvailable() noexcept
{
    return _number != 0 && !LgThread::get().isInOutput;
}

bool LgLogState::isMainThread() noexcept
{
    return ProcessIdentity::getThreadId() == state().mainThread;
}

bool LgLogState::isBlocking() noexcept
{
    return state().isBlocking;
}

std::shared_ptr<LgKeptRings> LgLogState::getKeptRings(std::uint32_t sessionNumber)
{
    const std::lock_guard<std::mutex> lock(state().pointer);
    LgSession* const session = _number == sessionNumber ? findSession() : nullptr;
    return session != nullptr ? session->getKeptRings() : nullptr;
}

bool LgLogState::addQueue(std::uint32_t sessionNumber, const std::shared_ptr<LgQueue>& queue)
{
    const std::lock_guard<std::mutex> lock(state().pointer);
    LgSession* const session = _number == sessionNumber ? findSession() : nullptr;
    if (session != nullptr)
        session->getRegistry().addQueue(queue);
    return session != nullptr;
}

bool LgLogState::addRing(std::uint32_t sessionNumber, const std::shared_ptr<LgSpanRing>& ring)
{
    const std::lock_guard<std::mutex> lock(state().pointer);
    LgSession* const session = _number == sessionNumber ? state().session.load() : nullptr;
    if (session == nullptr || session->getTimeline() == nullptr)
        return false;
    session->getTimeline()->addRing(ring);
    return true;
}

void LgLogState::startReader(std::uint32_t sessionNumber) noexcept
{
    const std::lock_guard<std::mutex> lock(state().pointer);
    if (_number == sessionNumber && sessionNumber != 0)
        state().readerThread.start();
}

void LgLogState::wakeReader() noexcept
{
    if (state().readerThread.isStarted())
        state().readerThread.wake();
    else
        startReader(getSessionNumber());
}

std::size_t LgLogState::drain(LgDrain how) noexcept
{
    if (LgThread::get().isInOutput)
        return 0;
    const std::lock_guard<std::mutex> lock(state().draining);
    return drainSession(how);
}

void LgLogState::drainAtEnd(LgDrain how) noexcept
{
    if (LgThread::get().isInOutput)
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

void LgLogState::start(std::unique_ptr<LgSession> session)
{
    const std::scoped_lock lock(state().draining, state().pointer);
    state().isBlocking = session->getSettings().isBlocking;
    state().mainThread = ProcessIdentity::getThreadId();
    keepSpares(*session);
    state().session = session.release();
    state().forkedFrom = nullptr;
    _number = ++state().lastNumber;
}

/// The number goes first, so that nothing new is logged and no reader started; then those are
/// turned away that find their queue without asking. Messages that were being written just then are
/// given a second chance.
void LgLogState::stop()
{
    {
        const std::lock_guard<std::mutex> lock(state().pointer);
        _number = 0;
        findSession();
    }
    state().readerThread.stop();
    const std::lock_guard<std::mutex> draining(state().draining);
    if (state().session == nullptr)
        return tellOnErrorStream();
    state().session.load()->getRegistry().leaveQueues();
    drainSession(LgDrain::toSystem);
    drainSession(LgDrain::toSystem);
    LgSpareQueues::get().clear();
    const std::lock_guard<std::mutex> lock(state().pointer);
    const std::unique_ptr<LgSession> session(state().session);
    state().session = nullptr;
    session->close();
    LgLosses::count(session->getLostCount());
    state().cut += session->getCutCount();
}

std::uint64_t LgLogState::getLostCount()
{
    const std::lock_guard<std::mutex> lock(state().pointer);
    const LgSession* const session = state().session;
    return LgLosses::getTotal() + (session != nullptr ? session->getLostCount() : 0);
}

std::uint64_t LgLogState::getCutCount()
{
    const std::lock_guard<std::mutex> lock(state().pointer);
    const LgSession* const session = state().session;
    return state().cut + (session != nullptr ? session->getCutCount() : 0);
}

LgSettings LgLogState::getSettings()
{
    const std::lock_guard<std::mutex> lock(state().pointer);
    const LgSession* const session =
        state().forkedFrom != nullptr ? state().forkedFrom : state().session.load();
    return session != nullptr ? session->getSettings() : LgSettings();
}

/// A thread that forks inside the logger's output holds the first lock already.
void LgLogState::lockForFork() noexcept
{
    if (!LgThread::get().isInOutput)
    {
        state().draining.lock();
        drainSession(LgDrain::toSystem);
    }
    state().pointer.lock();
}

void LgLogState::unlockAfterFork() noexcept
{
    state().pointer.unlock();
    if (!LgThread::get().isInOutput)
        state().draining.unlock();
}

/// The parent's reader thread is not there, so nothing of it can be destroyed.
void LgLogState::beginForkedSession(bool isMainThread) noexcept
{
    ::new (&state().readerThread) LgReaderThread(drainToBuffers);
    if (isMainThread)
        state().mainThread = ProcessIdentity::getThreadId();
    LgSession* const parent = state().session.exchange(nullptr);
    if (parent == nullptr && state().forkedFrom == nullptr)
        return;
    if (parent != nullptr)
    {
        parent->getRegistry().leaveQueues();
        LgSpareQueues::get().clear();
        state().forkedFrom = parent;
    }
    _number = ++state().lastNumber;
    findSession();
}

} // namespace Kr

#include <base/lgListener.h>

#include <base/internal/errors/immortal.h>

#include <algorithm>
#include <atomic>
#include <mutex>
#include <new>
#include <vector>

namespace Kr
{

namespace
{

/// Messages may come while the process ends.
struct State
{
    std::recursive_mutex mutex; // a function may end or make listeners
    std::vector<LgListener*> listeners;
    std::atomic<std::size_t> count{0};
};

State& state()
{
    static Immortal<State> instance;
    return *instance;
}

} // namespace

LgListener::LgListener(Function function)
    : _function(std::move(function))
{
    const std::lock_guard<std::recursive_mutex> lock(state().mutex);
    state().listeners.push_back(this);
    state().count = state().listeners.size();
}

LgListener::~LgListener()
{
    const std::lock_guard<std::recursive_mutex> lock(state().mutex);
    auto& all = state().listeners;
    all.erase(std::remove(all.begin(), all.end(), this), all.end());
    state().count = all.size();
}

void LgListener::lockForFork() noexcept
{
    state().mutex.lock();
}

void LgListener::unlockInParent() noexcept
{
    state().mutex.unlock();
}

/// The mutex knows its owner by a number that the thread no longer has.
void LgListener::unlockInChild() noexcept
{
    ::new (&state().mutex) std::recursive_mutex;
}

bool LgListener::isAny() noexcept
{
    return state().count.load(std::memory_order_relaxed) != 0;
}

/// By position, since the functions may change the list. The function is copied, since it may end
/// the listener that holds it.
void LgListener::notify(const LgMessage& message) noexcept
{
    const std::lock_guard<std::recursive_mutex> lock(state().mutex);
    for (std::size_t i = 0; i < state().listeners.size(); ++i)
        try
        {
            const Function function = state().listeners[i]->_function;
            function(message);
        }
        catch (...)
        {
            // Whatever is wrong there must not keep the messages from their files.
            continue;
        }
}

} // namespace Kr

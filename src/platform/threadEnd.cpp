#include <platform/platform.h>

#include <pthread.h>

namespace
{

constexpr int maxActions = 4;

/// What the thread has asked for. Plain data, which outlasts the thread's other objects.
struct Actions
{
    void (*list[maxActions])() noexcept;
    int count;
};

thread_local Actions actions = {};

/// The actions that are asked for while these run get a turn of their own.
void runActions(void*)
{
    while (actions.count > 0)
        actions.list[--actions.count]();
}

/// A thread-local object with a destructor would do, but one runtime library ends the process where
/// it has no memory to remember one, and the other frees the object before it destroys it.
class Key
{
public:
    Key() noexcept
        : _isMade(::pthread_key_create(&_key, runActions) == 0)
    {
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

    /// No thread may come back here when the library has gone.
    ~Key()
    {
        if (_isMade)
            ::pthread_key_delete(_key);
        _isMade = false;
    }

    bool arm() const noexcept { return _isMade && ::pthread_setspecific(_key, &actions) == 0; }

private:
    pthread_key_t _key = 0;
    bool _isMade;
};

/// Made before anything else: where thread-local objects belong to a key of their own, the keys of
/// a thread end in the order in which they were made.
[[gnu::init_priority(101)]] const Key key;

} // namespace

BOOL krAtThreadEnd(void (*action)() noexcept) noexcept
{
    for (int i = 0; i < actions.count; ++i)
        if (actions.list[i] == action)
            return 1;
    if (actions.count == maxActions || !key.arm())
        return 0;
    actions.list[actions.count++] = action;
    return 1;
}

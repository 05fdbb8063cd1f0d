#include <platform/platform.h>

namespace
{

constexpr int maxActions = 4;

/// What the thread has asked for.
struct Actions
{
    Actions() = default;
    Actions(const Actions&) = delete;
    Actions& operator=(const Actions&) = delete;

    ~Actions()
    {
        while (count > 0)
            list[--count]();
    }

    void (*list[maxActions])() noexcept = {};
    int count = 0;
};

thread_local Actions actions;

} // namespace

BOOL krAtThreadEnd(void (*action)() noexcept) noexcept
{
    for (int i = 0; i < actions.count; ++i)
        if (actions.list[i] == action)
            return 1;
    if (actions.count == maxActions)
        return 0;
    actions.list[actions.count++] = action;
    return 1;
}

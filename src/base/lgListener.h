#pragma once

/// @file
/// The log's messages handed to the application, which may show them in a window of its own.
/// @code
/// const Kr::LgListener toWindow(
///     [](const Kr::LgMessage& message)
///     {
///         if (message.level <= Kr::LgTypes::Warning)
///             std::cout << message.group << ": " << message.text << '\n';
///     });
/// @endcode
/// A listener gets every message that is logged while it exists, whatever the settings do with the
/// message's level, in the order of the log and some milliseconds after the fact; what
/// `LgLog::flush` has drained it has got. It may exist before the logger starts and after it stops.
///
/// The function is called on the thread that drains, mostly the logger's own, one call at a time:
/// it has to be quick, and a user interface takes the message over to its own thread. What it logs
/// is dropped, and what it throws is dropped, too.
///
/// Pitfalls: the texts of a message last as long as the call. The end of a listener waits for the
/// call that is being made, unless it ends itself in that call: nothing may be held meanwhile that
/// the function waits for.

#include <base/krBaseApi.h>
#include <base/lgTypes.h>

#include <cstdint>
#include <functional>
#include <string_view>

namespace Kr
{

struct LgMessage
{
    LgTypes::Level level;
    std::int64_t time;           ///< nanoseconds since 1970-01-01 00:00 UTC
    unsigned long thread;        ///< its number; 0: the thread that started the logger
    std::string_view threadName; ///< empty: none
    std::string_view group;      ///< empty: none
    std::string_view text;
    int lost;   ///< how many messages this one stands for that a full queue dropped
    bool isCut; ///< something of the message did not fit into its queue
};

class KR_BASE_API LgListener
{
public:
    using Function = std::function<void(const LgMessage&)>;

    explicit LgListener(Function function);
    LgListener(const LgListener&) = delete;
    LgListener& operator=(const LgListener&) = delete;
    ~LgListener();

private:
    friend class LgFork;
    friend class LgSession;

    static void lockForFork() noexcept;
    static void unlockInParent() noexcept;
    static void unlockInChild() noexcept;
    static bool isAny() noexcept;
    static void notify(const LgMessage& message) noexcept;

    const Function _function;
};

} // namespace Kr

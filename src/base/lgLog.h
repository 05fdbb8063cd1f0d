#pragma once

/// @file
/// The logger: its start and stop, and what a thread logs into.
///
/// The package `logger` starts it; code logs with `KR_LOG` (base/log.h). What is logged stands in
/// a queue of the logging thread until the logger's reader, a thread that runs from the first
/// message on, takes it to the files. The environment says which level goes where:
/// docs/log-files.md.
/// @code
/// std::cout << "the log is in " << Kr::LgLog::getDirectory() << '\n';
/// Kr::LgLog::flush(); // what has been logged so far can be read there
/// if (Kr::LgLog::getLostCount() != 0)
///     std::cout << "but for " << Kr::LgLog::getLostCount() << " messages\n";
/// @endcode
///
/// A message that has been logged reaches its file when the program ends in the normal way, by
/// `std::exit`, by an uncaught exception or by `std::terminate`. Fatal and internal errors are on
/// the disk when the statement that logs them ends. A forked process goes on logging into the same
/// files.
///
/// Pitfalls: a flood of messages that fills its thread's queue, and the spare ones of the process,
/// before the reader comes is dropped from there on and counted, unless `KR_BLOCKING_TRACE` has the
/// thread wait. While the logger is not up, statements
/// do nothing, whatever thread they are in. The queue of a thread is for that thread alone.

#include <base/krBaseApi.h>
#include <base/lgQueue.h>

#include <cstdint>
#include <string>

namespace Kr
{

class KR_BASE_API LgLog
{
public:
    /// The text of a setting under the name of its environment variable, such as "KR_LOG_DIR"; null
    /// if it is not given.
    using Lookup = const char* (*)(const char* name);

    /// Reads the settings, creates the groups, and from then on takes messages. Bad values are
    /// reported on standard output. The package `logger` looks its settings up among its
    /// initialisation variables.
    static void init(Lookup lookup);

    /// The same with the settings of the environment alone.
    static void init();

    /// Takes no more messages, writes those that wait, closes the files, and switches all groups
    /// off.
    static void destroy();

    /// The calling thread's queue, for those who write into it without `KR_LOG`: made by the first
    /// call, then at no cost. From then on the thread stays in it, however full it is. Null while
    /// the logger is not up, when the thread is ending or memory is short, and in code that the
    /// logger calls for its output. The thread that started the logger has the default queue, of
    /// number 0; the others have their thread's number. What the thread logs with `KR_LOG` between
    /// `reserveEntry` and `addEntry` goes into another queue.
    static LgQueue* getQueue() noexcept;

    /// Returns when everything that was logged before the call has been handed to the system. May
    /// be called by any thread.
    static void flush() noexcept;

    /// The same, and the disk has it.
    static void flushToDisk() noexcept;

    /// How many messages were dropped since the process began: by full queues or for want of one,
    /// by outputs that could not be written, by the limits of groups, or while the logger stopped.
    static std::uint64_t getLostCount();

    /// How many messages were written of which a part is missing, since the process began: a value
    /// that did not fit into its queue and reads "#", or the rest after the queue was full.
    static std::uint64_t getCutCount();

    /// Where the files are, and the timeline; empty while the logger is not up, or has no timeline.
    static std::string getDirectory();
    static std::string getTimelinePath();
};

/// Older than the static objects of each source that logs: what these log while the program ends is
/// not lost. One in a module, a program or a library: Windows ends all other threads before a
/// library's own static objects go, so each does this for itself.
class KR_BASE_API LgEndGuard
{
public:
    LgEndGuard() = default;
    LgEndGuard(const LgEndGuard&) = delete;
    LgEndGuard& operator=(const LgEndGuard&) = delete;
    ~LgEndGuard();
};

inline const LgEndGuard lgEndGuard{};

} // namespace Kr

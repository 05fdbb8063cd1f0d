#pragma once

/// @file
/// The statement that logs.
/// @code
/// const Kr::LgMinorGroup cache(Kr::LgMajorGroup::getInstanceForName("Database"), "Cache");
/// const char* table = "users";
/// const int rows = 12000;
///
/// KR_LOG(cache, Warning) << "no index on " << table << ", scanning " << rows << " rows";
/// @endcode
/// The group is an `LgMinorGroup` or a pointer to one (a null pointer logs nothing), the level one
/// of `LgTypes::Level` without its scope, and the values are whatever an `LgStream` takes;
/// base/lgValues.h tells which, and how to teach it more. A level that is off costs one load and
/// one test, and the values are not computed. The statement is one statement: an `else` behind it
/// belongs to the `if` before it.
///
/// A statement costs little more than its thread's queue does: the message stands in the queue,
/// with the number of its group, and a reader takes it to the file.

#include <base/internal/log/lgThreadSlot.h>
#include <base/krBaseApi.h>
#include <base/lgGroups.h>
#include <base/lgLog.h>
#include <base/lgQueue.h>
#include <base/lgStream.h>
#include <base/lgTypes.h>
#include <base/lgValues.h>

namespace Kr
{

/// One message, from its reservation in the thread's queue to its end. Use `KR_LOG`.
class KR_BASE_API LgStatement
{
public:
    LgStatement(const LgMinorGroup& group, LgTypes::Level level)
        : _level(level)
        , _place(group.isLevelEnabled(level) ? open(group, level) : Place())
    {
    }

    LgStatement(const LgMinorGroup* group, LgTypes::Level level)
        : _level(level)
        , _place(group != nullptr && group->isLevelEnabled(level) ? open(*group, level) : Place())
    {
    }

    LgStatement(const LgStatement&) = delete;
    LgStatement& operator=(const LgStatement&) = delete;

    ~LgStatement() { close(); }

    /// False if the level is off or the message was dropped.
    bool isOpen() const { return _place.queue != nullptr; }

    LgStream& getStream() { return _place.queue->getStream(); }

    void close()
    {
        if (_place.queue == nullptr)
            return;
        if (_place.isOrdinary)
            _place.queue->addEntry();
        else
            completeUnusual(_place.queue, _level);
        _place.queue = nullptr;
    }

private:
    /// Where the message goes. Passed by value, so that the compiler need not keep the statement in
    /// memory.
    struct Place
    {
        LgQueue* queue = nullptr;
        bool isOrdinary = false; ///< nothing is left to do behind the message
    };

    /// The way of nearly every statement: into the queue that its thread has already.
    static Place open(const LgMinorGroup& group, LgTypes::Level level) noexcept
    {
        LgQueue* const queue = LgThreadSlot::get();
        if (queue != nullptr && level > LgTypes::FatalError && group.getLimit() == nullptr &&
            queue->reserveOrdinary(level, group.getNumber()))
            return {queue, true};
        return openUnusual(group, level);
    }
    static Place openUnusual(const LgMinorGroup& group, LgTypes::Level level) noexcept;
    static void completeUnusual(LgQueue* queue, LgTypes::Level level) noexcept;

    const LgTypes::Level _level;
    Place _place;
};

} // namespace Kr

/// Logs what is streamed into it: `KR_LOG(group, Informational) << "loaded in " << seconds;`
#define KR_LOG(group, level)                                                                       \
    for (::Kr::LgStatement krStatement(group, ::Kr::LgTypes::level); krStatement.isOpen();         \
         krStatement.close())                                                                      \
    krStatement.getStream()

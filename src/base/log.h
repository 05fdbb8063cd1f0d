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
/// of `LgTypes::Level` without its scope, and the values are whatever an `LgStream` takes. A level
/// that is off costs one load and one test, and the values are not computed. The statement is one
/// statement: an `else` behind it belongs to the `if` before it.
///
/// The group's name is put before the text, where the reader finds it; the line shows it in a
/// column of its own.

#include <base/krBaseApi.h>
#include <base/lgGroups.h>
#include <base/lgLog.h>
#include <base/lgStream.h>
#include <base/lgTypes.h>

namespace Kr
{

class LgProducer;

/// One message, from its reservation in the thread's queue to its end. Use `KR_LOG`.
class KR_BASE_API LgStatement
{
public:
    LgStatement(const LgMinorGroup& group, LgTypes::Level level)
        : _level(level)
        , _producer(nullptr)
        , _stream(nullptr)
    {
        if (group.isLevelEnabled(level))
            open(group.getName());
    }

    LgStatement(const LgMinorGroup* group, LgTypes::Level level)
        : _level(level)
        , _producer(nullptr)
        , _stream(nullptr)
    {
        if (group != nullptr && group->isLevelEnabled(level))
            open(group->getName());
    }

    LgStatement(const LgStatement&) = delete;
    LgStatement& operator=(const LgStatement&) = delete;

    ~LgStatement() { close(); }

    /// False if the level is off or the message was dropped.
    bool isOpen() const { return _stream != nullptr; }

    LgStream& getStream() { return *_stream; }

    void close()
    {
        if (_stream != nullptr)
            complete();
    }

private:
    void open(const char* groupName) noexcept;
    void complete() noexcept;

    const LgTypes::Level _level;
    LgProducer* _producer;
    LgStream* _stream;
};

} // namespace Kr

/// Logs what is streamed into it: `KR_LOG(group, Informational) << "loaded in " << seconds;`
#define KR_LOG(group, level)                                                                       \
    for (::Kr::LgStatement krStatement(group, ::Kr::LgTypes::level); krStatement.isOpen();         \
         krStatement.close())                                                                      \
    krStatement.getStream()

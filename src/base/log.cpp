#include <base/log.h>

#include <base/internal/log/lgLimit.h>
#include <base/internal/log/lgLogState.h>
#include <base/internal/log/lgLosses.h>
#include <base/internal/log/lgProducer.h>

namespace Kr
{

LgStatement::Place LgStatement::openUnusual(const LgMinorGroup& group,
                                            LgTypes::Level level) noexcept
{
    if (!LgLogState::isAvailable())
        return {};
    LgLimit* const limit = group.getLimit();
    if (limit != nullptr && !limit->admits(level))
    {
        LgLosses::count(1);
        return {};
    }
    LgProducer* const producer = LgProducer::get();
    LgQueue* const queue = producer != nullptr ? producer->open(group.getNumber(), level) : nullptr;
    if (producer == nullptr)
        LgLosses::countForWantOfMemory(level);
    if (queue == nullptr)
        LgProducer::endIfDone();
    return {queue, false};
}

void LgStatement::completeUnusual(LgQueue* queue, LgTypes::Level level) noexcept
{
    queue->addEntry();
    LgProducer::endIfDone();
    if (level <= LgTypes::FatalError)
        LgLog::flushToDisk();
}

} // namespace Kr

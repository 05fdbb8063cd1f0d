#include <base/log.h>

#include <base/internal/log/lgLogState.h>
#include <base/internal/log/lgProducer.h>
#include <base/internal/log/lgThreadSlot.h>

namespace Kr
{

/// The way of nearly every statement: into the queue that its thread has already.
void LgStatement::open(std::uint16_t group) noexcept
{
    const LgTarget* const target = LgThreadSlot::get();
    _isOrdinary = _level > LgTypes::FatalError && target != nullptr &&
                  target->session == LgLogState::getSessionNumber() &&
                  target->queue->reserveOrdinary(_level, group);
    if (_isOrdinary)
        _queue = target->queue;
    else
        openUnusual(group);
}

void LgStatement::openUnusual(std::uint16_t group) noexcept
{
    if (LgProducer* producer = LgProducer::get())
        _queue = producer->open(group, _level);
}

void LgStatement::completeUnusual() noexcept
{
    _queue->addEntry();
    LgProducer::endIfDone();
    if (_level <= LgTypes::FatalError)
        LgLog::flushToDisk();
}

} // namespace Kr

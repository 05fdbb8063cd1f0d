#include <base/log.h>

#include <base/internal/log/lgProducer.h>

namespace Kr
{

void LgStatement::open(const char* groupName) noexcept
{
    _producer = LgProducer::get();
    if (_producer != nullptr)
        _stream = _producer->open(groupName, _level);
}

void LgStatement::complete() noexcept
{
    _stream = nullptr;
    if (_producer->close())
        LgProducer::end();
    if (_level <= LgTypes::FatalError)
        LgLog::flushToDisk();
}

} // namespace Kr

#include <base/prCounter.h>

#include <base/internal/counters/prValueText.h>
#include <base/prEx.h>
#include <base/raise.h>

#include <ostream>

namespace Kr
{

PrCounter::PrCounter(const PrPath& path, void* handle)
    : _path(path)
    , _handle(handle)
    , _isRate(performAskIfRate(handle))
{
}

PrCounter::~PrCounter()
{
    performRelease(_handle);
    if (_identity != nullptr)
        performRelease(_identity);
}

double PrCounter::getValue() const
{
    if (!isAvailable())
        raise<PrEx::ExNoValue>(KR_HERE, _path.toString().c_str(), getProblem().c_str());
    return _value;
}

std::string PrCounter::getProblem() const
{
    switch (_status)
    {
    case NotCollected:
        return "nothing has been collected yet";
    case FirstOfTwo:
        return "it needs two collections, some time apart";
    case NoInstance:
        return "there is no such instance now";
    case Failed:
        return performDescribe();
    case Available:
        break;
    }
    return {};
}

/// A value from two processes of one name is none.
void PrCounter::keepTo(double identity) noexcept
{
    if (_isRate && _status == Available && identity != _lastIdentity)
        _status = FirstOfTwo;
    _lastIdentity = identity;
}

std::ostream& operator<<(std::ostream& os, const PrCounter& counter)
{
    os << counter.getPath() << ": ";
    if (!counter.isAvailable())
        return os << counter.getProblem();
    return os << formatCounterValue(counter.getValue());
}

} // namespace Kr

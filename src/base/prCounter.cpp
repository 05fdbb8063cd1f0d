#include <base/prCounter.h>

#include <base/prEx.h>
#include <base/raise.h>

#include <charconv>
#include <cmath>
#include <ostream>
#include <string_view>

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
    const double value = counter.getValue();
    const int decimals = value == std::floor(value) ? 0 : 3;
    char text[512]; // the longest double has 309 digits
    const auto end =
        std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, decimals);
    return os << std::string_view(text, static_cast<std::size_t>(end.ptr - text));
}

} // namespace Kr

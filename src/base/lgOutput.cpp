#include <base/lgOutput.h>

#include <base/hwCounter.h>

#include <algorithm>
#include <cstdio>
#include <string_view>

namespace Kr
{

namespace
{

constexpr std::chrono::milliseconds retryInterval(250);

} // namespace

LgOutput::LgOutput(std::unique_ptr<LgFile> file, const std::string& name, LgLineFormat& format,
                   std::size_t maxBatch)
    : _file(std::move(file))
    , _name(name)
    , _format(format)
    , _maxBatch(std::min(maxBatch, batchSize))
    , _isFailing(false)
    , _hasComplained(false)
    , _lost(0)
    , _reportedLost(0)
{
    _waiting.reserve(maxWaiting + 3 * batchSize); // behind a full buffer, the longest line
}

LgOutput::~LgOutput()
{
    close();
}

void LgOutput::close()
{
    flush(true);
    _lost += static_cast<std::uint64_t>(std::count(_waiting.begin(), _waiting.end(), '\n'));
    _waiting.clear();
}

void LgOutput::write(const LgRecord& record)
{
    const std::size_t before = _waiting.size();
    _format.append(_waiting, record);
    if (_waiting.size() > maxWaiting)
    {
        _waiting.resize(before);
        ++_lost;
    }
    if (_waiting.size() >= _maxBatch)
        flush();
}

void LgOutput::flush(bool now)
{
    if (_waiting.empty() || (_isFailing && !now && std::chrono::steady_clock::now() < _nextTry))
        return;
    if (!writeWaiting())
        beginOutage();
    else if (_isFailing)
        endOutage();
}

void LgOutput::sync()
{
    flush(true);
    if (!_isFailing && !_file->sync())
        beginOutage();
}

bool LgOutput::writeWaiting()
{
    while (!_waiting.empty())
        if (!writeBatch())
            return false;
    return true;
}

bool LgOutput::writeBatch()
{
    const std::size_t size = nextBatch();
    if (!_file->append(_waiting.data(), size))
        return false;
    _waiting.erase(0, size);
    return true;
}

/// As many whole lines as fit into a batch, or one that does not.
std::size_t LgOutput::nextBatch() const
{
    if (_waiting.size() <= _maxBatch)
        return _waiting.size();
    const std::size_t last = std::string_view(_waiting).substr(0, _maxBatch).rfind('\n');
    return (last != std::string::npos ? last : _waiting.find('\n')) + 1;
}

void LgOutput::beginOutage()
{
    _isFailing = true;
    _nextTry = std::chrono::steady_clock::now() + retryInterval;
    if (_hasComplained)
        return;
    _hasComplained = true;
    std::fprintf(stderr,
                 "The log cannot be written to %s: %s Messages that find no room are counted.\n",
                 _name.c_str(), _file->getProblem().c_str());
}

/// The record that tells of the loss goes straight to the file that lost them.
void LgOutput::endOutage()
{
    _isFailing = false;
    const std::uint64_t lost = getLostCount();
    if (lost == _reportedLost)
        return;
    const std::string text =
        std::to_string(lost - _reportedLost) + " messages were lost: the log could not be written";
    _reportedLost = lost;
    _format.append(_waiting, {LgTypes::Warning, HwCounter::timeStamp(), 0, "Logger", text, 0});
    if (!writeWaiting())
        beginOutage();
}

} // namespace Kr

#include <base/internal/log/lgOutput.h>

#include <base/hwCounter.h>

#include <algorithm>
#include <cstdio>
#include <limits>
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
    , _unreported(0)
{
    _waiting.reserve(maxWaiting + 3 * batchSize); // behind a full buffer, the longest line
    _reportEnds.reserve(1024);
}

LgOutput::~LgOutput()
{
    close();
}

void LgOutput::close()
{
    flush(true);
    const auto records = std::count(_waiting.begin(), _waiting.end(), '\n');
    _lost += static_cast<std::size_t>(records) - _reportEnds.size();
    _waiting.clear();
    _reportEnds.clear();
}

void LgOutput::write(const LgRecord& record)
{
    if (!append(record))
    {
        _lost += record.lost == 0 ? 1 : 0;
        _unreported += static_cast<std::uint64_t>(std::max(record.lost, 1));
    }
    if (_waiting.size() >= _maxBatch)
        flush();
}

/// Puts the record behind those that wait, unless it finds no room.
bool LgOutput::append(const LgRecord& record)
{
    const std::size_t before = _waiting.size();
    _format.append(_waiting, record);
    if (_waiting.size() > maxWaiting)
    {
        _waiting.resize(before);
        return false;
    }
    if (record.lost != 0)
        _reportEnds.push_back(_waiting.size());
    return true;
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
    takeWritten(size);
    return true;
}

void LgOutput::takeWritten(std::size_t size)
{
    _waiting.erase(0, size);
    const auto isBehind = [size](std::size_t end) { return end > size; };
    const auto behind = std::find_if(_reportEnds.begin(), _reportEnds.end(), isBehind);
    _reportEnds.erase(_reportEnds.begin(), behind);
    for (std::size_t& end : _reportEnds)
        end -= size;
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
    if (_unreported == 0)
        return;
    const std::string text =
        std::to_string(_unreported) + " messages were lost: the log could not be written";
    const auto lost =
        static_cast<int>(std::min<std::uint64_t>(_unreported, std::numeric_limits<int>::max()));
    _unreported = 0;
    append({LgTypes::Warning, HwCounter::timeStamp(), 0, "Logger", text, lost});
    if (!writeWaiting())
        beginOutage();
}

} // namespace Kr

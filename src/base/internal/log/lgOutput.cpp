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
    , _outageStamp(0)
    , _isFailing(false)
    , _hasComplained(false)
    , _lost(0)
    , _unreported(0)
{
    _waiting.reserve(maxWaiting + 4 * batchSize); // behind a full buffer, the longest line
    _reports.reserve(1024);
}

LgOutput::~LgOutput()
{
    close();
}

void LgOutput::close()
{
    flush(true);
    const auto records = std::count(_waiting.begin(), _waiting.end(), '\n');
    _lost += static_cast<std::size_t>(records) - _reports.size();
    _waiting.clear();
    _reports.clear();
}

void LgOutput::write(const LgRecord& record)
{
    _format.append(_waiting, record);
    if (record.lost != 0)
        _reports.push_back({_waiting.size(), record.lost});
    if (_waiting.size() >= _maxBatch)
        flush();
    while (_waiting.size() > maxWaiting)
        makeRoom();
}

/// Drops the oldest lines, a batch at a time: what was logged last tells most.
void LgOutput::makeRoom()
{
    const std::size_t size = nextBatch(std::max(batchSize, _waiting.size() - maxWaiting));
    const auto lines = static_cast<std::size_t>(
        std::count(_waiting.begin(), _waiting.begin() + static_cast<std::ptrdiff_t>(size), '\n'));
    std::size_t messages = lines;
    for (const Report& report : _reports)
        if (report.end <= size)
        {
            --messages;
            _unreported += static_cast<std::uint64_t>(report.lost);
        }
    _lost += messages;
    _unreported += messages;
    takeOut(size);
}

void LgOutput::flush(bool now)
{
    if (_waiting.empty() || (_isFailing && !now && std::chrono::steady_clock::now() < _nextTry))
        return;
    reportLoss();
    if (writeWaiting())
        _isFailing = false;
    else
        beginOutage();
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
    const std::size_t size = nextBatch(_maxBatch);
    if (!_file->append(_waiting.data(), size))
        return false;
    takeOut(size);
    return true;
}

void LgOutput::takeOut(std::size_t size)
{
    _waiting.erase(0, size);
    const auto isBehind = [size](const Report& report) { return report.end > size; };
    _reports.erase(_reports.begin(), std::find_if(_reports.begin(), _reports.end(), isBehind));
    for (Report& report : _reports)
        report.end -= size;
}

/// As many whole lines as fit into so many bytes, or one that does not.
std::size_t LgOutput::nextBatch(std::size_t limit) const
{
    if (_waiting.size() <= limit)
        return _waiting.size();
    const std::size_t last = std::string_view(_waiting).substr(0, limit).rfind('\n');
    return (last != std::string::npos ? last : _waiting.find('\n')) + 1;
}

void LgOutput::beginOutage()
{
    if (!_isFailing)
        _outageStamp = HwCounter::timeStamp();
    _isFailing = true;
    _nextTry = std::chrono::steady_clock::now() + retryInterval;
    if (_hasComplained)
        return;
    _hasComplained = true;
    std::fprintf(stderr,
                 "The log cannot be written to %s: %s Messages that find no room are counted.\n",
                 _name.c_str(), _file->getProblem().c_str());
}

/// Puts a record that tells of the lost messages where they would stand, before those that wait.
void LgOutput::reportLoss()
{
    if (_unreported == 0)
        return;
    const std::string text =
        std::to_string(_unreported) + " messages were lost: the log could not be written";
    const auto lost =
        static_cast<int>(std::min<std::uint64_t>(_unreported, std::numeric_limits<int>::max()));
    std::string line;
    _format.append(line, {LgTypes::Warning, _outageStamp, 0, "Logger", text, lost});
    _waiting.insert(0, line);
    for (Report& report : _reports)
        report.end += line.size();
    _reports.insert(_reports.begin(), {line.size(), lost});
    _unreported = 0;
}

} // namespace Kr

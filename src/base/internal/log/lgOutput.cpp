#include <base/internal/log/lgOutput.h>

#include <base/hwCounter.h>
#include <base/internal/log/lgStandardStream.h>
#include <base/internal/log/lgTry.h>

#include <algorithm>
#include <limits>
#include <new>
#include <string_view>

namespace Kr
{

namespace
{

constexpr std::chrono::milliseconds retryInterval(250);
constexpr std::chrono::seconds restInterval(1);

} // namespace

LgOutput::LgOutput(std::unique_ptr<LgFile> file, const std::string& name, LgLineFormat& format,
                   std::size_t maxBatch)
    : _file(std::move(file))
    , _name(name)
    , _format(format)
    , _maxBatch(std::min(maxBatch, batchSize))
    , _outageStamp(0)
    , _isFailing(false)
    , _isMidLine(false)
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

/// Where the waiting lines find no room, the record that counts them may. Those of which the file
/// has not told whether they are there count, too.
void LgOutput::close() noexcept
{
    flush(true);
    if (_unreported == 0 && _waiting.empty())
        return;
    const bool isTorn = _isMidLine;
    dropAll();
    const std::uint64_t untold = _unreported;
    reportLoss();
    if (isTorn)
        lgTry([this] { _waiting.insert(0, 1, '\n'); });
    if (untold == 0 || (_file->getPending() == 0 && writeWaiting()))
        return;
    lgTry(
        [&]
        {
            LgStandardStream::complain(std::to_string(untold) +
                                       " messages were lost: the log could not be written to " +
                                       _name + "\n");
        });
    _waiting.clear();
    _reports.clear();
}

void LgOutput::write(const LgRecord& record) noexcept
{
    const std::size_t before = _waiting.size();
    if (!lgTry([&] { append(record); }))
    {
        _waiting.resize(before);
        if (!_isFailing && _unreported == 0)
            _outageStamp = record.timeStamp;
        _lost += record.lost == 0 ? 1 : 0;
        _unreported += record.lost == 0 ? 1 : static_cast<std::uint64_t>(record.lost);
    }
    if (_waiting.size() >= _maxBatch)
        flush();
    while (_waiting.size() > maxWaiting && makeRoom())
        continue;
}

void LgOutput::append(const LgRecord& record)
{
    _format.append(_waiting, record);
    if (record.lost != 0)
        _reports.push_back({_waiting.size(), record.lost});
}

/// Drops the oldest lines, a batch at a time: what was logged last tells most.
/// Returns whether there was one.
bool LgOutput::makeRoom()
{
    const std::size_t begin = getFixed();
    if (begin == _waiting.size())
        return false;
    const std::size_t excess = _waiting.size() - maxWaiting;
    drop(begin, begin + nextBatch(begin, std::max(batchSize, excess)));
    return true;
}

/// The rest of a line that was begun goes, too: it is not whole.
void LgOutput::dropAll()
{
    drop(0, _waiting.size());
    _isMidLine = false;
}

void LgOutput::drop(std::size_t begin, std::size_t end)
{
    const auto at = [this](std::size_t i)
    { return _waiting.begin() + static_cast<std::ptrdiff_t>(i); };
    auto messages = static_cast<std::uint64_t>(std::count(at(begin), at(end), '\n'));
    std::uint64_t reported = 0;
    for (const Report& report : _reports)
        if (report.end > begin && report.end <= end)
        {
            --messages;
            reported += static_cast<std::uint64_t>(report.lost);
        }
    _lost += messages;
    _unreported += messages + reported;
    takeOut(begin, end);
}

void LgOutput::flush(bool now) noexcept
{
    if (_waiting.empty() && _unreported == 0)
        return rest();
    if (_isFailing && !now && std::chrono::steady_clock::now() < _nextTry)
        return;
    reportLoss();
    if (writeWaiting())
        _isFailing = false;
    else
        beginOutage();
}

void LgOutput::rest()
{
    const auto now = std::chrono::steady_clock::now();
    if (now < _nextRest)
        return;
    _nextRest = now + restInterval;
    _file->rest();
}

void LgOutput::sync() noexcept
{
    flush(true);
    if (!_file->sync() && !_isFailing)
        beginOutage();
}

/// Where a batch finds no room, its first line may.
bool LgOutput::writeWaiting()
{
    while (!_waiting.empty())
        if (!writeBatch(_maxBatch) && !writeBatch(1))
            return false;
    return true;
}

/// Returns whether something was written.
bool LgOutput::writeBatch(std::size_t limit)
{
    const std::size_t begin = getFixed();
    const bool takesMore = begin < _waiting.size() && _file->getPending() == 0;
    const std::size_t size = begin + (takesMore ? nextBatch(begin, limit) : 0);
    const std::size_t taken = _file->append(_waiting.data(), size);
    if (taken != 0)
        _isMidLine = _waiting[taken - 1] != '\n';
    takeOut(0, taken);
    takeNews();
    return taken != 0;
}

void LgOutput::takeOut(std::size_t begin, std::size_t end)
{
    _waiting.erase(begin, end - begin);
    const auto isTaken = [=](const Report& report)
    { return report.end > begin && report.end <= end; };
    _reports.erase(std::remove_if(_reports.begin(), _reports.end(), isTaken), _reports.end());
    for (Report& report : _reports)
        if (report.end > end)
            report.end -= end - begin;
}

/// The size of what stands there: as many whole lines as fit into so many bytes, or one that does
/// not.
std::size_t LgOutput::nextBatch(std::size_t begin, std::size_t limit) const
{
    const std::string_view text = std::string_view(_waiting).substr(begin);
    if (text.size() <= limit)
        return text.size();
    const std::size_t last = text.substr(0, limit).rfind('\n');
    return (last != std::string::npos ? last : text.find('\n')) + 1;
}

/// The size of what the buffer begins with and must go on to begin with: what is being written, or
/// a part of a line. When the output is closed, nothing is.
std::size_t LgOutput::getFixed() const
{
    const std::size_t restOfLine = _isMidLine ? _waiting.find('\n') + 1 : 0;
    return std::min(std::max(restOfLine, _file->getPending()), _waiting.size());
}

void LgOutput::beginOutage()
{
    if (!_isFailing)
        _outageStamp = HwCounter::timeStamp();
    _isFailing = true;
    _nextTry = std::chrono::steady_clock::now() + retryInterval;
    if (!_hasComplained)
        _hasComplained = lgTry([this] { complainOfOutage(); });
}

void LgOutput::complainOfOutage()
{
    LgStandardStream::complain("The log cannot be written to " + _name + ": " +
                               _file->getProblem() + " Messages that find no room are counted.\n");
}

/// Puts a record that tells of the lost messages where they would stand, before those that wait.
void LgOutput::reportLoss()
{
    if (_unreported != 0 && lgTry([this] { insertLossReport(); }))
        _unreported = 0;
}

void LgOutput::insertLossReport()
{
    const std::string text =
        std::to_string(_unreported) + " messages were lost: the log could not be written";
    const auto lost =
        static_cast<int>(std::min<std::uint64_t>(_unreported, std::numeric_limits<int>::max()));
    insertReport({LgTypes::Warning, _outageStamp, 0, "Logger", text, lost});
}

/// Before the lines that wait, behind the rest of one that was begun.
void LgOutput::insertReport(const LgRecord& record)
{
    std::string line;
    _format.append(line, record);
    const std::size_t begin = getFixed();
    _reports.reserve(_reports.size() + 1);
    _waiting.insert(begin, line);
    for (Report& report : _reports)
        if (report.end > begin)
            report.end += line.size();
    _reports.push_back({begin + line.size(), record.lost});
}

void LgOutput::takeNews()
{
    lgTry(
        [this]
        {
            const std::string news = _file->takeNews();
            if (!news.empty())
                insertReport({LgTypes::Warning, HwCounter::timeStamp(), 0, "Logger", news, 0});
        });
}

} // namespace Kr

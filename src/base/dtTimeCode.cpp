#include <base/dtTimeCode.h>

#include <base/dtEx.h>
#include <base/raise.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <string_view>
#include <system_error>

namespace Kr
{

namespace
{

constexpr std::uint64_t greatestCount = std::numeric_limits<std::int64_t>::max();
constexpr std::uint64_t secondsPerMinute = 60;
constexpr std::uint64_t minutesPerHour = 60;
constexpr std::uint64_t minutesPerDropCycle = 10; ///< the tenth minute drops nothing

/// Frame numbers per second of a rate n/1 or n000/1001; 0 for other rates.
std::int32_t getNominalRate(const Rational& rate) noexcept
{
    const std::int32_t numerator = rate.getNumerator();
    if (rate.getDenominator() == 1)
        return std::max(numerator, 0);
    const bool isSlowed = rate.getDenominator() == 1001 && numerator > 0 && numerator % 1000 == 0;
    return isSlowed ? numerator / 1000 : 0;
}

bool isDropFrameRate(const Rational& rate) noexcept
{
    return rate == Rational(30000, 1001) || rate == Rational(60000, 1001);
}

int countDigits(std::int32_t value) noexcept
{
    int digits = 1;
    for (; value >= 10; value /= 10)
        ++digits;
    return digits;
}

void appendNumber(std::string& text, std::uint64_t value, int digits)
{
    char buffer[20];
    const char* const end = std::to_chars(buffer, buffer + sizeof(buffer), value).ptr;
    const std::size_t length = static_cast<std::size_t>(end - buffer);
    text.append(std::max<std::size_t>(static_cast<std::size_t>(digits), length) - length, '0');
    text.append(buffer, length);
}

/// Reads a time code from left to right; raises at the first fault.
class TimeCodeReader
{
public:
    explicit TimeCodeReader(const char* text)
        : _text(text)
        , _rest(text)
    {
    }

    bool takeSign() noexcept
    {
        const bool isNegative = !_rest.empty() && _rest.front() == '-';
        _rest.remove_prefix(isNegative ? 1 : 0);
        return isNegative;
    }

    /// One or more digits.
    std::uint64_t takeHours()
    {
        std::uint64_t hours = 0;
        const auto [end, error] = std::from_chars(_rest.data(), _rest.data() + _rest.size(), hours);
        if (error == std::errc::result_out_of_range)
            failOverflow();
        if (error != std::errc())
            fail("hours are not a number");
        _rest.remove_prefix(static_cast<std::size_t>(end - _rest.data()));
        return hours;
    }

    /// A separator and exactly that many digits, with a value below the limit.
    std::uint64_t takeField(char separator, int digits, std::uint64_t limit, const char* name)
    {
        if (_rest.empty() || _rest.front() != separator)
            fail(std::string("'") + separator + "' expected before the " + name);
        const std::string_view field = _rest.substr(1, static_cast<std::size_t>(digits));
        const char* const end = field.data() + field.size();
        std::uint64_t value = 0;
        if (field.size() != static_cast<std::size_t>(digits) ||
            std::from_chars(field.data(), end, value).ptr != end)
            fail(std::string(name) + " are not " + std::to_string(digits) + " digits");
        if (value >= limit)
            fail(std::string(name) + " above " + std::to_string(limit - 1));
        _rest.remove_prefix(field.size() + 1);
        return value;
    }

    void expectEnd() const
    {
        if (!_rest.empty())
            fail("more text after the frames");
    }

    [[noreturn]] void failOverflow() const { fail("the count does not fit in 64 bits"); }

    [[noreturn]] void fail(const std::string& fault) const
    {
        raise<DtEx::BadTimeCode>(KR_HERE, _text.data(), _text.size(), fault.c_str());
    }

private:
    std::string_view _text;
    std::string_view _rest;
};

} // namespace

DtTimeCode::DtTimeCode(const Rational& rate)
    : DtTimeCode(rate, isDropFrameRate(rate) ? DropFrame : NonDrop)
{
}

DtTimeCode::DtTimeCode(const Rational& rate, Counting counting)
    : _rate(rate)
    , _counting(counting)
    , _framesPerSecond(getNominalRate(rate))
    , _droppedPerMinute(counting == DropFrame ? _framesPerSecond / 15 : 0)
    , _frameDigits(std::max(countDigits(_framesPerSecond - 1), 2))
{
    if (!isAvailable(rate, counting))
        raise<DtEx::NoTimeCode>(KR_HERE, rate, counting == DropFrame);
}

bool DtTimeCode::isAvailable(const Rational& rate, Counting counting) noexcept
{
    return counting == DropFrame ? isDropFrameRate(rate) : getNominalRate(rate) != 0;
}

std::string DtTimeCode::getText(const DtTimeIndex& count) const
{
    const std::uint64_t framesPerSecond = static_cast<std::uint64_t>(_framesPerSecond);
    const std::uint64_t number = getNumber(TwosComplement::magnitude<long long>(count));
    const std::uint64_t seconds = number / framesPerSecond;
    const std::uint64_t minutes = seconds / secondsPerMinute;
    std::string text(count < 0 ? "-" : "");
    appendNumber(text, minutes / minutesPerHour, 2);
    appendNumber(text += ':', minutes % minutesPerHour, 2);
    appendNumber(text += ':', seconds % secondsPerMinute, 2);
    appendNumber(text += getSeparator(), number % framesPerSecond, _frameDigits);
    return text;
}

DtTimeIndex DtTimeCode::getCount(const char* text) const
{
    KR_ASSERT(text != nullptr);
    const std::uint64_t framesPerSecond = static_cast<std::uint64_t>(_framesPerSecond);
    const std::uint64_t dropped = static_cast<std::uint64_t>(_droppedPerMinute);
    TimeCodeReader reader(text);
    const bool isNegative = reader.takeSign();
    const std::uint64_t hours = reader.takeHours();
    const std::uint64_t minutes = reader.takeField(':', 2, minutesPerHour, "minutes");
    const std::uint64_t seconds = reader.takeField(':', 2, secondsPerMinute, "seconds");
    const std::uint64_t frames =
        reader.takeField(getSeparator(), _frameDigits, framesPerSecond, "frames");
    reader.expectEnd();
    if (frames < dropped && seconds == 0 && minutes % minutesPerDropCycle != 0)
        reader.fail("this frame number is dropped at the start of the minute");

    const std::uint64_t limit = greatestCount + (isNegative ? 1 : 0);
    if (hours > limit / getFrame(framesPerSecond * secondsPerMinute * minutesPerHour))
        reader.failOverflow();
    const std::uint64_t wholeSeconds =
        (hours * minutesPerHour + minutes) * secondsPerMinute + seconds;
    const std::uint64_t magnitude = getFrame(wholeSeconds * framesPerSecond + frames);
    if (magnitude > limit)
        reader.failOverflow();
    return static_cast<long long>(isNegative ? 0 - magnitude : magnitude);
}

/// The number of a frame, where the dropped numbers count.
std::uint64_t DtTimeCode::getNumber(std::uint64_t frame) const noexcept
{
    const std::uint64_t dropped = static_cast<std::uint64_t>(_droppedPerMinute);
    const std::uint64_t framesPerMinute =
        static_cast<std::uint64_t>(_framesPerSecond) * secondsPerMinute - dropped;
    const std::uint64_t framesPerCycle = framesPerMinute * minutesPerDropCycle + dropped;
    const std::uint64_t frameInCycle = frame % framesPerCycle;
    // The first minute of a cycle drops nothing, and so is longer than the others.
    const std::uint64_t minute =
        frameInCycle < dropped ? 0 : (frameInCycle - dropped) / framesPerMinute;
    return frame + dropped * (frame / framesPerCycle * (minutesPerDropCycle - 1) + minute);
}

/// The frame of a number.
std::uint64_t DtTimeCode::getFrame(std::uint64_t number) const noexcept
{
    const std::uint64_t minutes =
        number / (static_cast<std::uint64_t>(_framesPerSecond) * secondsPerMinute);
    return number - static_cast<std::uint64_t>(_droppedPerMinute) *
                        (minutes - minutes / minutesPerDropCycle);
}

} // namespace Kr

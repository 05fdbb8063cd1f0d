#pragma once

/// @file
/// Time code of frames, as SMPTE ST 12-1 counts them: hours, minutes, seconds, frames.
/// @code
/// const Kr::DtTimeCode ntsc(Kr::Rational(30000, 1001));
/// ntsc.getText(17982);             // "00:10:00;00"
/// ntsc.getCount("00:10:00;00");    // 17982
/// const Kr::DtTimeCode film(Kr::Rational(24, 1));
/// film.getText(-25);               // "-00:00:01:01"
/// @endcode
///
/// Non-drop counting gives every second as many frame numbers as the rate, rounded up, has frames.
/// At 30000/1001 and 60000/1001 such a time code falls behind the clock by 3.6 s an hour, so
/// drop-frame counting skips the first two (four) frame numbers of every minute but each tenth:
/// numbers are dropped, never frames. Drop-frame time code is written with ';' before the frames.
///
/// Time code here counts durations too: hours go on past 24, and a count below zero is written as
/// its magnitude behind a '-'. Every 64-bit count has a text, and its text gives it back.
///
/// Pitfall: a time at another rate has to be converted to the rate of the frames first
/// (`DtTime::convertRate`).
///
/// A value type; distinct values can be used by distinct threads.

#include <base/dtTime.h>
#include <base/krBaseApi.h>

#include <cstdint>
#include <string>

namespace Kr
{

class KR_BASE_API DtTimeCode
{
public:
    enum Counting
    {
        NonDrop,
        DropFrame
    };

    /// Drop-frame at 30000/1001 and 60000/1001; non-drop at the other rates that have a time code.
    /// @throws DtEx::NoTimeCode if the rate has none
    explicit DtTimeCode(const Rational& rate);

    /// @throws DtEx::NoTimeCode if frames at the rate are not counted that way
    DtTimeCode(const Rational& rate, Counting counting);

    /// Non-drop at n/1 and at n000/1001, drop-frame at 30000/1001 and 60000/1001.
    static bool isAvailable(const Rational& rate, Counting counting) noexcept;

    Rational getRate() const noexcept { return _rate; }
    Counting getCounting() const noexcept { return _counting; }

    /// Frame numbers per second.
    std::int32_t getFramesPerSecond() const noexcept { return _framesPerSecond; }

    /// "01:02:03:04", "01:02:03;04" for drop-frame; the frames take as many digits as the greatest
    /// frame number, two at least.
    std::string getText(const DtTimeIndex& count) const;

    /// The frame that a text stands for. Two digits each are expected for minutes and seconds, as
    /// many as `getText` writes for the frames, and one or more for the hours.
    /// @param text not null (a failed assertion)
    /// @throws DtEx::BadTimeCode with what is wrong
    DtTimeIndex getCount(const char* text) const;

    /// The same with the rate.
    DtTime getDtTime(const char* text) const { return DtTime(getCount(text), _rate); }

private:
    char getSeparator() const noexcept { return _counting == DropFrame ? ';' : ':'; }
    std::uint64_t getNumber(std::uint64_t frame) const noexcept;
    std::uint64_t getFrame(std::uint64_t number) const noexcept;

    Rational _rate;
    Counting _counting;
    std::int32_t _framesPerSecond;
    std::int32_t _droppedPerMinute;
    int _frameDigits;
};

} // namespace Kr

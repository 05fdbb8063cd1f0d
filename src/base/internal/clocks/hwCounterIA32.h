#pragma once

/// @file
/// The engine over the machine's high-resolution counter. Programs use `HwCounter`.

#include <base/internal/clocks/hwCounterEng.h>

#include <cstdint>

namespace Kr
{

class HwCounterIA32 final : public HwCounterEng
{
public:
    /// @param rateNumerator ticks per second times the denominator, above 0
    /// @param shift the bits that a raw count loses to become a tick count
    HwCounterIA32(int rateNumerator, int rateDenominator, int shift);

    unsigned long long timeStamp() const override;
    double seconds(unsigned long long start, unsigned long long end) const override;
    double seconds() const override;
    double resolution() const override;
    int getRateNumerator() const override;
    int getRateDenominator() const override;
    void dump(std::ostream& os) const override;

private:
    std::int32_t _rateNumerator;
    std::int32_t _rateDenominator;
    std::int32_t _shift;
    double _cycle; ///< seconds per tick
};

} // namespace Kr

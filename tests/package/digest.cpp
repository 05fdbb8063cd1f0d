// One number of all that the headers compile into a program: the same on every machine, whatever
// the program was compiled with.

#include <base/dtTimeChrono.h>
#include <base/dtTimeIndexInterval.h>
#include <base/dtTimeUtil.h>
#include <base/floatUtil.h>
#include <base/osEndian.h>
#include <base/pow2.h>
#include <base/profiler.imp>
#include <base/timer.imp>

#include <cstdint>
#include <cstdio>
#include <cstring>

namespace
{

/// FNV-1a of the bits of everything added.
class Digest
{
public:
    template <class T>
    void add(const T& value)
    {
        unsigned char bytes[sizeof(T)];
        std::memcpy(bytes, &value, sizeof(T));
        for (unsigned char byte : bytes)
            _value = (_value ^ byte) * 0x100000001B3;
    }

    std::uint64_t get() const { return _value; }

private:
    std::uint64_t _value = 0xCBF29CE484222325;
};

/// The bits of a SplitMix64 sequence (Steele, Lea, Flood 2014).
std::uint64_t getBits()
{
    static std::uint64_t state = 1;
    state += 0x9E3779B97F4A7C15;
    std::uint64_t bits = state;
    bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9;
    bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EB;
    return bits ^ (bits >> 31);
}

/// Of magnitudes from 2^-3 to 2^4, made from its bits so that nothing is calculated here.
double getDouble()
{
    const std::uint64_t bits = getBits();
    const std::uint64_t exponent = 1020 + (bits >> 60) / 2;
    const std::uint64_t number =
        (bits & 0x8000000000000000) | exponent << 52 | (bits & 0x000FFFFFFFFFFFFF);
    double value;
    std::memcpy(&value, &number, sizeof value);
    return value;
}

/// With a float's bits alone, so that the conversion is exact.
float getFloat()
{
    const double wide = getDouble();
    std::uint64_t bits;
    std::memcpy(&bits, &wide, sizeof bits);
    bits &= 0xFFFFFFFFE0000000;
    double narrow;
    std::memcpy(&narrow, &bits, sizeof narrow);
    return static_cast<float>(narrow);
}

double get(double*)
{
    return getDouble();
}

float get(float*)
{
    return getFloat();
}

template <class T>
void addComparisons(Digest& digest, const T& a, const T& b, const T& eps)
{
    using Kr::FloatUtil;
    digest.add(FloatUtil::isEqual(a, b, eps));
    digest.add(FloatUtil::isGreater(a, b, eps));
    digest.add(FloatUtil::isGreaterEqual(a, b, eps));
    digest.add(FloatUtil::isSmaller(a, b, eps));
    digest.add(FloatUtil::isSmallerEqual(a, b, eps));
}

template <class T>
void addFunctions(Digest& digest, const T& a, const T& b)
{
    using Kr::FloatUtil;
    for (const T& value :
         {FloatUtil::round(a), FloatUtil::floor(a), FloatUtil::ceil(a), FloatUtil::mod(a, b),
          FloatUtil::abs(a), FloatUtil::sgn(a), FloatUtil::sqrt(FloatUtil::abs(a)),
          FloatUtil::hypot(a, b), FloatUtil::radiansToDegrees(a), FloatUtil::degreesToRadians(a)})
        digest.add(value);
}

template <class T>
void add(Digest& digest, const Kr::Interval<T>& interval)
{
    digest.add(interval.getLower());
    digest.add(interval.getUpper());
    digest.add(interval.getWidth());
    digest.add(interval.getCentre());
}

template <class T>
void addInterval(Digest& digest, const Kr::Interval<T>& a, const Kr::Interval<T>& b, const T& x)
{
    for (const Kr::Interval<T>& result : {a + b, a - b, a * b, a * x, x - a, -a, a.getUnion(b),
                                          a.getIntersection(b), Kr::Interval<T>(a).extend(x)})
        add(digest, result);
    if (!b.contains(T(0)))
    {
        add(digest, a / b);
        add(digest, b.reciprocal());
    }
    if (x != T(0))
        add(digest, a / x);
    digest.add(a.getInclusiveContainment(b));
    digest.add(a.getExclusiveContainment(b));
}

template <class T>
void addNumeric(Digest& digest)
{
    const T a = get(static_cast<T*>(nullptr)), b = get(static_cast<T*>(nullptr));
    const T c = get(static_cast<T*>(nullptr)), d = get(static_cast<T*>(nullptr));
    addComparisons(digest, a, b, c);
    addComparisons(digest, T(1.0001F), T(1), Kr::FloatUtil::getCompareEps(a));
    addFunctions(digest, a, b);
    addInterval(digest, Kr::Interval<T>(a, b), Kr::Interval<T>(c, d), c);
}

void addTimes(Digest& digest)
{
    const Kr::Rational rate(static_cast<int>(getBits() % 90000) + 1,
                            static_cast<int>(getBits() % 1001) + 1);
    const Kr::DtTime time(static_cast<long long>(getBits()) >> (getBits() % 50), rate);
    digest.add(rate.getDouble());
    digest.add(rate.getFloat());
    digest.add(rate.getReciprocalDouble());
    digest.add(rate.getReciprocalFloat());
    digest.add(time.getCount().getDouble());
    digest.add(time.getCount().getFloat());
    using Seconds = std::chrono::duration<double>;
    using Milliseconds = std::chrono::duration<float, std::milli>;
    digest.add(Kr::DtTimeChrono::getDuration<Seconds>(time).count());
    digest.add(Kr::DtTimeChrono::getDuration<Milliseconds>(time).count());
    const std::chrono::duration<double, std::milli> given(getDouble());
    digest.add(static_cast<long long>(Kr::DtTimeChrono::getDtTime(given, rate).getCount()));
    digest.add(time < Kr::DtTime(7, 24, 1));
    addInterval(digest, Kr::DtTimeIndexInterval(time.getCount(), 7),
                Kr::DtTimeIndexInterval(-3, static_cast<int>(getBits() % 1000)), time.getCount());
    addInterval(digest, Kr::Interval<int>(static_cast<int>(getBits() % 4096), -7),
                Kr::Interval<int>(static_cast<int>(getBits() >> 33), 5), 3);
}

/// Tells the times that it is given.
class Stopwatch : public Kr::IntervalTimer
{
public:
    explicit Stopwatch(const char* name)
        : IntervalTimer(name)
    {
    }

    void start() override { _interval = getDouble(); }
    void stop() override {}
    double timeInterval() const override { return _interval; }
    double sinceStart() const override { return _interval; }

private:
    double _interval = 0.;
};

void addProfiles(Digest& digest)
{
    Kr::Profiler<Stopwatch> profiler;
    Kr::Timer<Stopwatch> timer;
    for (int i = 0; i < 100; ++i)
    {
        profiler.start();
        profiler.stop();
        profiler.endCycle();
        timer.start();
        digest.add(timer.getSeconds());
        timer.stop();
        for (double value : {profiler.totalTime(), profiler.averageTime(),
                             profiler.standardDeviation(), timer.getSeconds()})
            digest.add(value);
    }
}

void addBytes(Digest& digest)
{
    for (int i = 0; i < 100; ++i)
    {
        digest.add(Kr::OsEndian::invert(getBits()));
        digest.add(Kr::OsEndian::invert(static_cast<std::uint32_t>(getBits())));
    }
    for (const double number : {3.14159, -2.718281828459045})
        digest.add(Kr::OsEndian::invert(number));
}

} // namespace

int main()
{
    Digest digest;
    for (int i = 0; i < 20000; ++i)
    {
        addNumeric<float>(digest);
        addNumeric<double>(digest);
        addTimes(digest);
        digest.add(Kr::Pow2::ceil(static_cast<std::uint32_t>(getBits() >> getBits() % 32)));
    }
    for (const double x : {0.49999999999999994, 4503599627370497., 3.7})
        addFunctions(digest, x, 2.5);
    addProfiles(digest);
    addBytes(digest);
    std::printf("%016llx\n", static_cast<unsigned long long>(digest.get()));
}

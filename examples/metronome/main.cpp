// Beats at an interval, shows how late each beat came, and compares the library's sleep with that
// of the standard library.
//
//     metronome [seconds between beats] [seconds in all]

#include <base/inInitGuard.h>
#include <base/periodicTimer.h>
#include <base/sleeper.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

namespace
{

constexpr double microseconds = 1e6;

/// Counts in classes that double: below 1, 2, 4, ... microseconds.
class Histogram
{
public:
    void add(double seconds)
    {
        std::size_t index = 0;
        for (double limit = 1. / microseconds; seconds >= limit && index + 1 < _counts.size();
             limit *= 2.)
            ++index;
        ++_counts[index];
    }

    void print(std::ostream& os) const
    {
        constexpr int width = 50;
        const int greatest = std::max(1, *std::max_element(_counts.begin(), _counts.end()));
        std::size_t last = _counts.size();
        while (last > 0 && _counts[last - 1] == 0)
            --last;
        for (std::size_t i = 0; i < last; ++i)
        {
            const bool isOpen = i + 1 == _counts.size();
            const int bar = (_counts[i] * width + greatest - 1) / greatest;
            os << (isOpen ? "  over " : "  below") << std::setw(7) << (1 << (isOpen ? i - 1 : i))
               << " us " << std::setw(6) << _counts[i] << ' '
               << std::string(static_cast<std::size_t>(bar), '#') << '\n';
        }
    }

private:
    std::array<int, 18> _counts{};
};

double median(std::vector<double> values)
{
    std::nth_element(values.begin(), values.begin() + values.size() / 2, values.end());
    return values[values.size() / 2];
}

/// Beats for so long; a beat that is missed is one that came while the last was being handled.
void beat(Kr::PeriodicTimer& timer, double duration)
{
    Histogram histogram;
    const double interval = timer.getInterval();
    const auto last = static_cast<long long>(duration / interval);
    long long heard = 0;
    long long count = 0;
    const double begin = Kr::PeriodicTimer::getCurrentTime();
    timer.start();
    while (count < last)
    {
        count = timer.waitNextBeat();
        const double now = Kr::PeriodicTimer::getCurrentTime();
        histogram.add(now - begin - static_cast<double>(count) * interval);
        ++heard;
    }
    timer.stop();
    std::cout << heard << " beats of " << interval * 1000. << " ms, " << count - heard
              << " missed; how late they came:\n";
    histogram.print(std::cout);
}

/// How much longer than asked for the sleeps take, at the median.
template <class Sleep>
double measureSleep(double seconds, Sleep sleep)
{
    constexpr int rounds = 101;
    std::vector<double> late;
    for (int i = 0; i < rounds; ++i)
    {
        const double begin = Kr::PeriodicTimer::getCurrentTime();
        sleep();
        late.push_back(Kr::PeriodicTimer::getCurrentTime() - begin - seconds);
    }
    return median(late) * microseconds;
}

void compareSleeps()
{
    constexpr double seconds = 0.001;
    const double own = measureSleep(seconds, [] { Kr::Sleeper::getInstance().sleep(seconds); });
    const double standard =
        measureSleep(seconds, [] { std::this_thread::sleep_for(std::chrono::milliseconds(1)); });
    std::cout << "a sleep of 1 ms ends late by, at the median:\n"
              << std::fixed << std::setprecision(1) << std::setw(8) << own << " us  Kr::Sleeper\n"
              << std::setw(8) << standard << " us  std::this_thread::sleep_for\n";
}

double parse(int argc, const char* const* argv, int index, double standard)
{
    return argc > index ? std::atof(argv[index]) : standard;
}

} // namespace

int main(int argc, char** argv)
{
    const double interval = parse(argc, argv, 1, 0.01);
    const double duration = parse(argc, argv, 2, 2.);
    try
    {
        const char* const* arguments = argv;
        const Kr::InInitGuard guard(argc, arguments);
        const Kr::ObjPtr<Kr::PeriodicTimer> timer(Kr::PeriodicTimer::create(interval));
        beat(*timer, duration);
        compareSleeps();
        return 0;
    }
    catch (const Kr::ExBase& error)
    {
        std::cerr << "metronome: " << error.getReason() << '\n';
        return 1;
    }
}

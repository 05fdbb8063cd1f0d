// Shows the same instants at several rates: ticks, seconds, time code, and whether the way there
// was exact.
//
//   timecode RATE [TIME...]
//
// RATE is in ticks per second, as "25" or "30000/1001". A TIME is a tick count or a time code at
// that rate; without any they are read from standard input, one to a line.

#include <base/dtEx.h>
#include <base/dtTimeCode.h>
#include <base/dtTimeUtil.h>
#include <base/rational.h>

#include <cstdint>
#include <cstring>
#include <exception>
#include <iomanip>
#include <iostream>
#include <stdexcept>
#include <string>

namespace
{

/// The rates that every time is shown at, beside its own.
const Kr::Rational shownRates[] = {Kr::Rational(24, 1), Kr::Rational(25, 1),
                                   Kr::Rational(30000, 1001), Kr::Rational(60000, 1001),
                                   Kr::Rational(48000, 1)};

Kr::Rational readRate(const std::string& text)
{
    // The library's text form of a time holds a rate: count, numerator, denominator.
    const std::size_t slash = text.find('/');
    const std::string denominator = slash == std::string::npos ? "1" : text.substr(slash + 1);
    const std::string whole = "0 " + text.substr(0, slash) + " " + denominator;
    const Kr::Rational rate = Kr::DtTimeUtil::getDtTimeFromDtString(whole.c_str()).getRate();
    if (text.find_first_not_of("0123456789/") != std::string::npos || rate < Kr::Rational(0, 1))
        throw std::invalid_argument("a rate is written as 25 or 30000/1001");
    return rate;
}

Kr::DtTime readTime(const std::string& text, const Kr::Rational& rate)
{
    if (text.find(':') != std::string::npos)
        return Kr::DtTimeCode(rate).getDtTime(text.c_str());
    std::size_t end = 0;
    long long count = 0;
    try
    {
        count = std::stoll(text, &end);
    }
    catch (const std::logic_error&)
    {
        end = 0;
    }
    if (end == 0 || end != text.size())
        throw std::invalid_argument("'" + text + "' is neither a tick count nor a time code");
    return Kr::DtTime(count, rate);
}

std::string getRateText(const Kr::Rational& rate)
{
    const std::string numerator = std::to_string(rate.getNumerator());
    return rate.getDenominator() == 1 ? numerator
                                      : numerator + "/" + std::to_string(rate.getDenominator());
}

void printRow(const std::string& rate, const std::string& ticks, const std::string& seconds,
              const std::string& timeCode, const char* remark)
{
    std::cout << std::setw(12) << rate << ' ' << std::setw(20) << ticks << ' ' << std::setw(19)
              << seconds << ' ' << std::setw(23) << timeCode << "  " << remark << '\n';
}

void printAt(const Kr::DtTime& time, const Kr::Rational& rate)
{
    try
    {
        const auto [count, isExact] = time.getCount().convertChecked(time.getRate(), rate);
        const bool hasCode = Kr::DtTimeCode::isAvailable(rate, Kr::DtTimeCode::NonDrop);
        const double seconds = Kr::DtTimeUtil::getSecondsDouble(Kr::DtTime(count, rate));
        printRow(getRateText(rate), std::to_string(count), std::to_string(seconds),
                 hasCode ? Kr::DtTimeCode(rate).getText(count) : "-",
                 isExact ? "exact" : "truncated");
    }
    catch (const Kr::DtEx::CountOverflow&)
    {
        printRow(getRateText(rate), "-", "-", "-", "does not fit in 64 bits");
    }
}

void print(const Kr::DtTime& time)
{
    printRow("rate", "ticks", "seconds", "time code", "conversion");
    printAt(time, time.getRate());
    for (const Kr::Rational& rate : shownRates)
        if (rate != time.getRate())
            printAt(time, rate);
    std::cout << '\n';
}

/// Prints the times that can be read, and tells of the others. Returns whether all could be.
class Table
{
public:
    explicit Table(const Kr::Rational& rate)
        : _rate(rate)
    {
    }

    void add(const std::string& text)
    {
        try
        {
            print(readTime(text, _rate));
        }
        catch (const std::exception& error)
        {
            std::cerr << "timecode: " << error.what() << '\n';
            _isComplete = false;
        }
    }

    bool isComplete() const { return _isComplete; }

private:
    Kr::Rational _rate;
    bool _isComplete = true;
};

bool run(int argc, char* argv[])
{
    Table table(readRate(argv[1]));
    for (int i = 2; i < argc; ++i)
        table.add(argv[i]);
    const char* const blanks = " \t\r";
    std::string line;
    while (argc == 2 && std::getline(std::cin, line))
    {
        const std::size_t begin = line.find_first_not_of(blanks);
        if (begin != std::string::npos)
            table.add(line.substr(begin, line.find_last_not_of(blanks) + 1 - begin));
    }
    return table.isComplete();
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc < 2 || std::strcmp(argv[1], "--help") == 0)
    {
        std::cerr << "usage: timecode RATE [TIME...]\n"
                     "  RATE  ticks per second: 25, 30000/1001\n"
                     "  TIME  a tick count or a time code at that rate; without any, one per line\n"
                     "        on standard input\n";
        return 2;
    }
    try
    {
        return run(argc, argv) ? 0 : 1;
    }
    catch (const std::exception& error)
    {
        std::cerr << "timecode: rate '" << argv[1] << "': " << error.what() << '\n';
        return 2;
    }
}

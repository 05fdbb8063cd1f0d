#pragma once

/// @file
/// Internal to the library: the table in which profilers and their kin are written to a stream.

#include <ios>
#include <ostream>
#include <string>

namespace Kr
{

class PrCounter;
class ProfCounters;

/// Sets a stream up for the table while it lives, and puts its state back.
class ProfTable
{
public:
    explicit ProfTable(std::ostream& os);
    ProfTable(const ProfTable&) = delete;
    ProfTable& operator=(const ProfTable&) = delete;
    ~ProfTable();

    /// The label in a field of 16, eight blanks, the value.
    template <class Value>
    void writeLine(const char* label, const Value& value)
    {
        writeLabel(label);
        _os << value << std::endl;
    }

    /// A heading and the statistics of each; nothing if they are null.
    void writeCounters(const ProfCounters* counters);

    /// The heading of a counter: its path, and why it has no statistics.
    static std::string describe(const ProfCounters& counters, const PrCounter& counter);

private:
    void writeLabel(const char* label);

    std::ostream& _os;
    const std::ios_base::fmtflags _flags;
    const std::streamsize _width;
    const char _fill;
};

} // namespace Kr

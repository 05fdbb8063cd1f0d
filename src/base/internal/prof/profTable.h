#pragma once

/// @file
/// Internal to the library: the table in which profilers and their kin are written to a stream.

#include <ios>
#include <ostream>

namespace Kr
{

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

private:
    void writeLabel(const char* label);

    std::ostream& _os;
    const std::ios_base::fmtflags _flags;
    const std::streamsize _width;
    const char _fill;
};

} // namespace Kr

#include <base/internal/prof/profTable.h>

#include <iomanip>

namespace Kr
{

ProfTable::ProfTable(std::ostream& os)
    : _os(os)
    , _flags(os.flags())
    , _width(os.width(0)) // the caller's width would pad the first text
    , _fill(os.fill(' '))
{
    _os << std::left << std::fixed;
}

ProfTable::~ProfTable()
{
    _os.flags(_flags);
    _os.width(_width);
    _os.fill(_fill);
}

void ProfTable::writeLabel(const char* label)
{
    _os << std::setw(16) << label << std::setw(8) << "";
}

} // namespace Kr

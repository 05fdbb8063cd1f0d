#include <base/envVar.h>

#include <base/assert.h>
#include <base/osEnv.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <iomanip>
#include <limits>
#include <ostream>

namespace Kr
{

namespace
{

void dumpText(std::ostream& os, const char* text)
{
    os << '"' << (text != nullptr ? text : "NIL") << '"';
}

/// `strtol` saturates, where an overflow in `atoi` is undefined; `long` has 64 bits on some hosts.
std::int32_t intFromText(const char* text)
{
    const long value = std::strtol(text, nullptr, 10);
    return static_cast<std::int32_t>(std::clamp<long>(
        value, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()));
}

/// Whether a decimal number that has no double is too large, not too small: whether its leading
/// digit stands before the decimal point once the exponent is applied.
bool isTooLarge(const char* number, const char* end)
{
    const char* const exponentMark =
        std::find_if(number, end, [](char c) { return c == 'e' || c == 'E'; });
    const char* const point = std::find(number, exponentMark, '.');
    const char* const digit =
        std::find_if(number, exponentMark, [](char c) { return c >= '1' && c <= '9'; });
    const std::ptrdiff_t place = point - digit;
    long exponent = 0;
    if (exponentMark != end)
        exponent = std::strtol(exponentMark + 1, nullptr, 10);
    return exponent > -place;
}

double doubleFromText(const char* text)
{
    text += std::strspn(text, " \t\n\v\f\r");
    if (text[0] == '+' && text[1] != '-')
        ++text;
    const char* const end = text + std::strlen(text);
    double value = 0.;
    const std::from_chars_result result = std::from_chars(text, end, value);
    if (result.ec != std::errc::result_out_of_range)
        return value;
    const double magnitude =
        isTooLarge(text, result.ptr) ? std::numeric_limits<double>::infinity() : 0.;
    return *text == '-' ? -magnitude : magnitude;
}

} // namespace

// --- EnvVar ---

EnvVar::Entry::Entry(EnvVar* variable)
    : _variable(variable)
{
    getRegistry()._variables.push_back(variable);
}

EnvVar::Entry::~Entry()
{
    getRegistry()._variables.remove(_variable);
}

EnvVar::EnvVar(const char* name, const char* defaultValue)
    : _name(name)
    , _default(defaultValue)
    , _entry(this)
{
    KR_ASSERT(name != nullptr);
    EnvVar::refresh();
}

EnvVar::~EnvVar() = default;

void EnvVar::refresh()
{
    const char* value = OsEnv::getVariable(_name);
    if (value != nullptr)
        _value = value;
    _isSet = value != nullptr;
}

void EnvVar::dump(std::ostream& os) const
{
    dumpName(os);
    os << " value ";
    dumpText(os, _isSet ? _value.c_str() : nullptr);
    os << " default ";
    dumpText(os, _default);
}

void EnvVar::putEnv(const char* assignment)
{
    OsEnv::putVariable(assignment);
}

EnvVarRegistry& EnvVar::getRegistry()
{
    static EnvVarRegistry registry;
    return registry;
}

void EnvVar::dumpName(std::ostream& os) const
{
    const std::ios_base::fmtflags flags = os.setf(std::ios_base::right, std::ios_base::adjustfield);
    os << "name " << std::setw(25) << _name;
    os.flags(flags);
}

// --- EnvIntVar ---

EnvIntVar::EnvIntVar(const char* name, std::int32_t defaultValue)
    : EnvVar(name, nullptr)
    , _intValue(defaultValue)
    , _intDefault(defaultValue)
{
    EnvIntVar::refresh();
}

void EnvIntVar::refresh()
{
    EnvVar::refresh();
    const char* text = EnvVar::getValue();
    _intValue = text != nullptr ? intFromText(text) : _intDefault;
}

void EnvIntVar::dump(std::ostream& os) const
{
    dumpName(os);
    os << " value " << _intValue << " default " << _intDefault;
}

// --- EnvDoubleVar ---

EnvDoubleVar::EnvDoubleVar(const char* name, double defaultValue)
    : EnvVar(name, nullptr)
    , _doubleValue(defaultValue)
    , _doubleDefault(defaultValue)
{
    EnvDoubleVar::refresh();
}

void EnvDoubleVar::refresh()
{
    EnvVar::refresh();
    const char* text = EnvVar::getValue();
    _doubleValue = text != nullptr ? doubleFromText(text) : _doubleDefault;
}

void EnvDoubleVar::dump(std::ostream& os) const
{
    dumpName(os);
    os << " value " << _doubleValue << " default " << _doubleDefault;
}

// --- listing ---

std::ostream& operator<<(std::ostream& os, const EnvVar& variable)
{
    variable.dump(os);
    return os;
}

std::ostream& operator<<(std::ostream& os, const EnvVarRegistry& registry)
{
    for (const EnvVar* variable : registry.getVariables())
    {
        os << '\n';
        variable->dump(os);
    }
    return os;
}

} // namespace Kr

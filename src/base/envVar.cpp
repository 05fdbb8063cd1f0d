#include <base/envVar.h>

#include <base/assert.h>
#include <base/internal/init/inDecimal.h>
#include <base/internal/init/inReport.h>
#include <base/osEnv.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iomanip>
#include <limits>
#include <ostream>

namespace Kr
{

namespace
{

std::string quote(const char* text)
{
    return std::string("\"") + (text != nullptr ? text : "NIL") + '"';
}

template <class Number>
std::string toText(Number number)
{
    InReport text;
    text << number;
    return text.str();
}

/// `strtol` saturates, where an overflow in `atoi` is undefined; `long` has 64 bits on some hosts.
std::int32_t intFromText(const char* text)
{
    const long value = std::strtol(text, nullptr, 10);
    return static_cast<std::int32_t>(std::clamp<long>(
        value, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()));
}

double doubleFromText(const char* text)
{
    text += std::strspn(text, " \t\n\v\f\r");
    if (text[0] == '+' && text[1] != '-')
        ++text;
    return InDecimal<double>::parse(text, text + std::strlen(text)).value;
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
    dumpPair(os, quote(_isSet ? _value.c_str() : nullptr), quote(_default));
}

void EnvVar::putEnv(const char* assignment)
{
    OsEnv::putVariable(assignment);
}

EnvVarRegistry& EnvVar::getRegistry()
{
    // Never destroyed: a variable in a static owner that is filled late is destroyed after
    // everything that was built before it, and leaves the registry then.
    static EnvVarRegistry& registry = *new EnvVarRegistry;
    return registry;
}

void EnvVar::dumpPair(std::ostream& os, const std::string& value,
                      const std::string& defaultText) const
{
    InReport report;
    report << "name " << std::setw(25) << _name << " value " << value << " default " << defaultText;
    report.writeTo(os);
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
    dumpPair(os, toText(_intValue), toText(_intDefault));
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
    dumpPair(os, toText(_doubleValue), toText(_doubleDefault));
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

#pragma once

/// @file
/// Environment variables with a default, declared where they are used.
/// @code{.cpp}
/// static Kr::EnvIntVar gridLines("VIEWER_GRID_LINES", 10);
///
/// int getGridSpacing(int width) { return width / gridLines.getValue(); }
///
/// void reportSettings() { std::cout << Kr::EnvVar::getRegistry() << '\n'; }
/// @endcode
/// Each object reads the live environment when it is built and at each `refresh`, and keeps what it
/// read: after a change of the environment its value is the old one until it is refreshed. All
/// objects enter themselves in one registry, so that everything the process consults can be listed.
/// A setting that the command line can give too is better an initialisation variable.
///
/// Pitfalls: the name and the default are kept as pointers and must outlive the object (they are
/// string literals in practice). Nothing here locks: variables belong to the static objects, or to
/// one thread.

#include <base/krBaseApi.h>
#include <base/list.h>

#include <cstdint>
#include <iosfwd>
#include <string>

namespace Kr
{

class EnvVar;

/// The variables of the process in the order of their construction. It owns none of them.
class KR_BASE_API EnvVarRegistry
{
public:
    EnvVarRegistry() = default;
    EnvVarRegistry(const EnvVarRegistry&) = delete;
    EnvVarRegistry& operator=(const EnvVarRegistry&) = delete;

    const List<EnvVar*>& getVariables() const { return _variables; }

private:
    friend class EnvVar;

    List<EnvVar*> _variables;
};

/// A variable whose value is its text.
class KR_BASE_API EnvVar
{
public:
    /// Registers the object and reads the environment. `defaultValue` may be null.
    /// Raises `ExInternalError` when the name is null.
    EnvVar(const char* name, const char* defaultValue);
    EnvVar(const EnvVar&) = delete;
    EnvVar& operator=(const EnvVar&) = delete;

    virtual ~EnvVar();

    /// Reads the environment again.
    virtual void refresh();

    /// Writes name, value and default on one line, without its end. The value is the environment's,
    /// not the fallback; a text that is absent is written as "NIL".
    virtual void dump(std::ostream& os) const;

    const char* getName() const { return _name; }

    /// The environment's text, or else the default. Holds until the next `refresh`.
    const char* getValue() const { return _isSet ? _value.c_str() : _default; }

    /// Sets ("NAME=value") or removes ("NAME=") a variable of the process. Refreshes none. Raises
    /// as `OsEnv::putVariable` does.
    static void putEnv(const char* assignment);

    static EnvVarRegistry& getRegistry();

protected:
    /// Writes "name " and the name, right-aligned in a field of 25, then " value " and " default "
    /// with these texts, whatever the stream's format settings are.
    void dumpPair(std::ostream& os, const std::string& value, const std::string& defaultText) const;

private:
    /// The entry in the registry, which is left however the construction ends.
    class Entry
    {
    public:
        explicit Entry(EnvVar* variable);
        ~Entry();

    private:
        EnvVar* _variable;
    };

    const char* _name;
    const char* _default;
    std::string _value; // a copy: the runtime frees its text when the variable changes
    bool _isSet = false;
    Entry _entry;
};

/// A variable whose value is an integer.
class KR_BASE_API EnvIntVar : public EnvVar
{
public:
    EnvIntVar(const char* name, std::int32_t defaultValue);

    /// Converts the text as `atoi` does: what follows the number is ignored, and a text that is not
    /// a number gives 0, not the default. A number out of range gives the nearest in range.
    void refresh() override;
    void dump(std::ostream& os) const override;

    std::int32_t getValue() const { return _intValue; }

private:
    std::int32_t _intValue;
    std::int32_t _intDefault;
};

/// A variable whose value is a double.
class KR_BASE_API EnvDoubleVar : public EnvVar
{
public:
    EnvDoubleVar(const char* name, double defaultValue);

    /// Converts the text as `atof` does in the "C" locale, whatever the program's locale: what
    /// follows the number is ignored, and a text that is not a number gives 0, not the default. A
    /// number out of range gives infinity or 0. There is no hexadecimal form.
    void refresh() override;
    void dump(std::ostream& os) const override;

    double getValue() const { return _doubleValue; }

private:
    double _doubleValue;
    double _doubleDefault;
};

KR_BASE_API std::ostream& operator<<(std::ostream& os, const EnvVar& variable);

/// Writes, for each variable, an end of line and then the variable's dump: the listing begins with
/// a line break and ends without one.
KR_BASE_API std::ostream& operator<<(std::ostream& os, const EnvVarRegistry& registry);

} // namespace Kr

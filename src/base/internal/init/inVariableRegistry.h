#pragma once

/// @file
/// The variables of the process and the overrides that wait for them. Internal to the library.

#include <functional>
#include <map>
#include <string>

namespace Kr
{

class InNamedVariable;

class InVariableRegistry
{
public:
    static InVariableRegistry& getInstance();

    /// Raises `InEx::ExHandleAlreadyInUse`, also when an alias gives "--" and this handle to
    /// another variable.
    void add(InNamedVariable& variable);
    void remove(const InNamedVariable& variable) noexcept;

    /// Null when no variable has the handle.
    InNamedVariable* find(const char* handle) const;

    /// In the order of their handles.
    const std::map<std::string, InNamedVariable*, std::less<>>& getVariables() const
    {
        return _variables;
    }

    /// Overrides that no variable has consumed: handle and text.
    std::map<std::string, std::string, std::less<>>& getOverrides() { return _overrides; }

private:
    std::map<std::string, InNamedVariable*, std::less<>> _variables;
    std::map<std::string, std::string, std::less<>> _overrides;
};

} // namespace Kr

#pragma once

/// @file
/// Internal to the library: every name by which a setting can be reached.

#include <base/vector.h>

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace Kr
{

class InNamedVariable;
class InSettingsStore;

/// What belongs to a handle.
struct InNames
{
    InNamedVariable* variable = nullptr; ///< null while nobody owns the handle
    Vector<std::string> options; ///< those that aliases give, in the order of their definition
    Vector<std::string> environmentNames;    ///< likewise
    std::optional<std::string> overrideText; ///< waits for the variable's start
};

class InNameTable
{
public:
    using Handles = std::map<std::string, InNames, std::less<>>;

    static InNameTable& getInstance();

    /// Raises `InEx::ExHandleAlreadyInUse`, also when an alias gives "--" and this handle to
    /// another.
    void addVariable(const std::string& handle, InNamedVariable& variable);
    void removeVariable(const std::string& handle, const InNamedVariable& variable) noexcept;

    /// An empty option or environment name is none. Raises `InEx::ExNoNewContextAliasAfterInit`
    /// once the table is closed, `InEx::ExContextAliasAlreadyDefined` when a name is bound already
    /// or the option is another's handle.
    void addAlias(const std::string& handle, const std::string& option,
                  const std::string& environmentName);
    void removeAlias(const std::string& handle, const std::string& option,
                     const std::string& environmentName) noexcept;

    /// From now on there are no new aliases.
    void close() noexcept { _isClosed = true; }

    void setOverride(const std::string& handle, const std::string& text)
    {
        _handles[handle].overrideText = text;
    }
    /// The override that waits for the variable, which does not wait any more.
    std::optional<std::string> takeOverride(const std::string& handle);
    void clearOverrides() noexcept;

    /// Where settings are kept; null if nowhere. Returns the previous one.
    InSettingsStore* setStore(InSettingsStore* store) noexcept
    {
        return std::exchange(_store, store);
    }
    InSettingsStore* getStore() const noexcept { return _store; }

    /// The names of a handle; none when it is not known.
    const InNames& getNames(std::string_view handle) const;
    /// The setting that an option ("--samples") means by an alias or by its handle; null when there
    /// is none.
    const InNames* findOption(std::string_view option) const;
    const Handles& getHandles() const noexcept { return _handles; }

private:
    void bind(const std::string& handle, const std::string& option,
              const std::string& environmentName);
    void forgetIfEmpty(Handles::iterator entry) noexcept;

    Handles _handles;
    // What aliases bind: the names and the handles that they mean.
    std::map<std::string, std::string, std::less<>> _options;
    std::map<std::string, std::string, std::less<>> _environmentNames;
    InSettingsStore* _store = nullptr;
    bool _isClosed = false;
};

} // namespace Kr

#pragma once

/// @file
/// Context aliases: the option and the environment variable by which a setting is reached.
///
/// An initialisation variable always answers to its handle (`--viewer.samples=8`). A context alias
/// gives it a shorter option, the name of an environment variable, or both:
/// @code
/// static Kr::InContextAlias samplesAlias("viewer.samples", "--samples", "VIEWER_SAMPLES");
/// @endcode
/// Aliases are static objects; they may stand in another source than the variable, and be defined
/// before it. A handle can have several, so that an option keeps its old spelling after it was
/// renamed.
///
/// `InSettings::dumpAll` tells which aliases mean a handle that no variable has.
///
/// Pitfalls: aliases can be defined only until the first start-up pass. A library that is loaded
/// later reaches its variables by their handles. Not for use by several threads.

#include <base/krBaseApi.h>

#include <string>

namespace Kr
{

/// The names that an alias binds to a handle.
class KR_BASE_API InContextAliasBase
{
public:
    InContextAliasBase(const InContextAliasBase&) = delete;
    InContextAliasBase& operator=(const InContextAliasBase&) = delete;
    virtual ~InContextAliasBase();

    /// The handle of the variable that is meant.
    const char* getHandle() const noexcept { return _handle.c_str(); }
    /// The option with its two dashes; null when the alias has none.
    const char* getOption() const noexcept { return _option.empty() ? nullptr : _option.c_str(); }
    /// The name of the environment variable; null when the alias has none.
    const char* getEnvironmentName() const noexcept
    {
        return _environmentName.empty() ? nullptr : _environmentName.c_str();
    }

protected:
    /// Binds the names.
    InContextAliasBase(const char* handle, const char* option, const char* environmentName);

private:
    std::string _handle;
    std::string _option;
    std::string _environmentName;
};

/// An alias. The texts are copied.
class KR_BASE_API InContextAlias : public InContextAliasBase
{
public:
    /// @param handle the handle of the variable
    /// @param option "--" and a name without "="; null for none
    /// @param environmentName the name of the environment variable, as exact as the snapshot of the
    ///        environment takes it; null for none
    ///
    /// Raises `ExInternalError` when both names are null or one of the texts is not as stated,
    /// `InEx::ExNoNewContextAliasAfterInit` once the first pass has begun, and
    /// `InEx::ExContextAliasAlreadyDefined` when the option or the environment variable is bound
    /// already, or the option is the handle of another variable.
    InContextAlias(const char* handle, const char* option, const char* environmentName = nullptr);
};

} // namespace Kr

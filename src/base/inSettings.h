#pragma once

/// @file
/// The settings of the process together: help, unknown options, overrides, and where each value
/// came from.
/// @code{.cpp}
/// #include <base/inInitGuard.h>
///
/// int main(int argc, char** argv)
/// {
///     if (Kr::InSettings::answerHelp(argc, argv, std::cout)) // before any package starts
///         return 0;
///     Kr::InSettings::refuseUnknownOptions(argc, argv);      // if the program wants that
///     Kr::InSettings::setOverride("viewer.samples", "16");
///     const Kr::InInitGuard guard(argc, argv);
///     Kr::InSettings::dumpAll(std::cout);
///     return 0;
/// }
/// @endcode
/// A setting is an `InVariable<T>`, with the names that context aliases give it. What the user has
/// chosen is kept for later runs by a store, such as `OsSettingsStore`.
///
/// Pitfalls: only what has been constructed is known: a library that is loaded later brings its
/// settings along, so a program with such libraries asks for help and refuses options when they are
/// loaded. Not for use by several threads.

#include <base/krBaseApi.h>

#include <iosfwd>

namespace Kr
{

class InPackageInitBase;
class InSettingsStore;

class KR_BASE_API InSettings
{
public:
    /// When the words hold the option `--help`, prints the help and returns true. The first word is
    /// the program's name; the options end at the word "--".
    static bool answerHelp(int argc, const char* const* argv, std::ostream& os);

    /// Raises `InVariableEx::ExUnknownOption`, with the nearest known name, for the first word that
    /// begins with two dashes and is no option of any setting. The words are read as by
    /// `answerHelp`. Once packages are up, the words that are left of the command line can be given
    /// (`InContextAliasMgrBase::getRemainingWords`).
    static void refuseUnknownOptions(int argc, const char* const* argv);

    /// Whether the command line that the manager has taken over holds the option `--help`.
    static bool isHelpRequested();

    /// A line on the usage, then a table for each package, by name: each setting's options,
    /// environment variables, default and meaning. What a setting answers to besides, "--" and its
    /// handle, is shown where it has no other option.
    /// @param programName of which only the file's name is shown; null for that of the command line
    static void printHelp(std::ostream& os, const char* programName = nullptr);

    /// Says of each setting, by handle, its value, the source that won, and the candidates that
    /// lost; of one that has no value, why. Handles that aliases or overrides name and no variable
    /// has are listed too.
    static void dumpAll(std::ostream& os);

    /// Gives the variable of that handle its value, ahead of every other source, when its package
    /// starts. The variable need not exist yet; a later override of the same handle replaces an
    /// earlier one. Raises `ExInternalError` when a text is null, and
    /// `InEx::ExVariableAlreadyInitialized` when the variable has started.
    static void setOverride(const char* handle, const char* text);

    /// Names the store whose texts take precedence over the defaults, for the packages that start
    /// from now on; null for none. Returns the previous one.
    static InSettingsStore* setStore(InSettingsStore* store) noexcept;

    /// Stores the values of a package's variables, wherever they came from: a later start without
    /// overrides and options takes them again. Those that are as they would be without a store are
    /// removed from it. Raises as `InNamedVariable::store`.
    static void store(const InPackageInitBase& package);
};

} // namespace Kr

#pragma once

/// @file
/// The part of an initialisation variable that its package knows, and what can be done with the
/// variables of the process together.
/// @code
/// Kr::InVariableBase::setOverride("viewer.samples", "16"); // before the package starts
/// Kr::InInitGuard guard(argc, argv);
/// if (Kr::InVariableBase::isHelpRequested())
///     Kr::InVariableBase::printHelp(std::cout);
/// Kr::InVariableBase::dumpAll(std::cerr);
/// @endcode
/// Not for use by several threads.

#include <base/krBaseApi.h>

#include <iosfwd>

namespace Kr
{

class KR_BASE_API InVariableBase
{
public:
    virtual ~InVariableBase();

    /// Called when the variable's package starts, before the package's own start routine.
    virtual void initialize() = 0;
    /// Called when the variable's package stops, after the package's own stop routine.
    virtual void finalize() = 0;

    /// Gives the variable of that handle its value, ahead of every other source, when its package
    /// starts. The variable need not exist yet; a later override of the same handle replaces an
    /// earlier one. Raises `ExInternalError` when a text is null, and
    /// `InEx::ExVariableAlreadyInitialized` when the variable has started.
    static void setOverride(const char* handle, const char* text);

    /// Discards the overrides that no variable has consumed. The manager calls this when it stops,
    /// right before it releases the command line, which is forgotten here too.
    static void clearPendingOverrides();

    /// Whether the command line holds the option `--help`.
    static bool isHelpRequested();

    /// A table for each package, by name: each of its variables' options, environment variables,
    /// default and meaning. What a setting answers to besides, "--" and its handle, is shown where
    /// it has no other option.
    static void printHelp(std::ostream& os);

    /// Says of each variable, by handle, its value, the source that won, and the candidates that
    /// lost; of one that has no value, why.
    static void dumpAll(std::ostream& os);
};

} // namespace Kr

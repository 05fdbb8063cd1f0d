#pragma once

/// @file
/// The manager that starts and stops a program's packages.
///
/// Every library of the program registers its packages (`InInit`) while its static objects are
/// built; nothing is started then. The program starts them all at the top of `main`, each after
/// everything that it needs, and stops them in exactly the reverse order:
/// @code{.cpp}
/// #include <base/inInitGuard.h>
/// int main(int argc, char** argv)
/// {
///     Kr::InInitGuard guard(argc, argv); // starts the packages; stops them when main ends
///     // The command line is the manager's now: it is read through variables and context aliases.
///     Kr::InInitMgr::getInstance().reportStart(std::cout);
/// }
/// @endcode
/// A start that fails raises: `InEx::ExPackageNotRegistered`, `InEx::ExDependencyCycle` (see
/// `reportCycles`), or whatever a package's own start routine raised. What had been started by then
/// stays up, and `dump` tells which packages those are; `finalize` stops them.
///
/// Packages with the same rank, that is the number of packages that they need directly or not,
/// start in the order of their names.
///
/// The environment variable `KR_DEBUG_INITIALIZE`, with any value, has every step reported on the
/// standard error stream.
///
/// Pitfalls: packages that are registered later, by libraries loaded at run time, need an
/// `InReinitGuard`; `finalize` is final, so that a package started after it is never stopped. There
/// is no lock: packages are registered, started and stopped by the main thread.

#include <base/krBaseApi.h>

#include <iosfwd>
#include <memory>

namespace Kr
{

struct InInitState;
struct InPackageRegistrar;

class KR_BASE_API InInitMgr
{
public:
    /// The one manager, built by the first call.
    static InInitMgr& getInstance();

    InInitMgr(const InInitMgr&) = delete;
    InInitMgr& operator=(const InInitMgr&) = delete;

    /// Takes the command line over, the program name included, and starts every package that is
    /// registered and not up. `argc` is 0 and `argv` null afterwards. May be called again: the
    /// arguments are appended to those taken before.
    ///
    /// Raises `ExInternalError`, with nothing done, if `argc` is negative or an argument is null,
    /// and what is said above.
    void initialize(int& argc, const char* const*& argv);
    /// The same for the arguments as `main` has them.
    void initialize(int& argc, char**& argv);

    /// Discards overrides that no variable has taken and the arguments, then stops the packages.
    /// Raises `InEx::ExFinaliseBeforeInit`, `InEx::ExDoubleFinalise`, `ExInternalError` when a
    /// start routine calls it, or what a stop routine raised; in that case a further call stops the
    /// remaining packages.
    void finalize();

    /// Whether start routines, or stop routines, are being run.
    bool isInitializing() const;
    bool isFinalizing() const;

    /// Writes which packages of the last pass form cycles. A group lists every later package that
    /// its first one needs and that is itself on a cycle, be it another one.
    std::ostream& reportCycles(std::ostream& stream) const;

    /// Writes the packages of the last pass, if it failed, those that are known, and the cycles.
    std::ostream& dump(std::ostream& stream) const;

    /// Writes a table of the packages in the order of their start: rank, and the milliseconds that
    /// their variables and their start routine took. A record of the whole process: neither
    /// `finalize` nor the unloading of a library removes a line.
    std::ostream& reportStart(std::ostream& stream) const;

    /// Writes the graph of the packages that are known, in the language of Graphviz' `dot`. An
    /// arrow leads to what a package needs. Packages that are up are filled; cycles are red;
    /// needed packages that nobody registered are dashed.
    std::ostream& writeGraph(std::ostream& stream) const;

    /// The variable's value in the environment as it was when the first package registered, or null
    /// if it was not set. Case matters. The text stays valid until the process exits.
    static const char* getEnv(const char* name);

private:
    friend class InReinitGuard;
    friend struct InPackageRegistrar;

    InInitMgr();
    ~InInitMgr();

    void incReinitCount();
    void decReinitCount();

    const std::unique_ptr<InInitState> _state;
};

} // namespace Kr

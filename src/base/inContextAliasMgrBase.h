#pragma once

/// @file
/// The command line, as the initialisation framework keeps it, and the table of context aliases.
///
/// The manager hands the command line over at the start; the words that no variable takes remain
/// for the application, in order and with the program name first, so that an option parser can walk
/// them:
/// @code
/// Kr::Vector<char*> words = Kr::InContextAliasMgrBase::getRemainingWords();
/// Kr::InOptionParser parser(static_cast<int>(words.size()), words.data(), "vo:");
/// @endcode
///
/// Pitfalls: the words live until `InInitMgr::finalize`. A word takes part as an option only before
/// the first `--`, which itself remains. Options that no variable knows remain too, and
/// `InOptionParser` stops at a word that begins with two dashes: an application that wants to
/// reject unknown options looks for such words first. Not for use by several threads.

#include <base/krBaseApi.h>
#include <base/vector.h>

namespace Kr
{

class InContextAliasBase;

class KR_BASE_API InContextAliasMgrBase
{
public:
    /// The copies of the arguments, the program name included, each made with `new char[]`. The
    /// initialisation manager appends to the list, and releases the copies when it stops.
    static Vector<char*>& args();

    /// The words of the command line that no variable has taken so far, in order. The pointers lead
    /// into `args()`.
    static Vector<char*> getRemainingWords();

    /// No alias can be defined from now on. The manager calls this when a pass begins.
    static void closeRegistration() noexcept;

    /// The aliases of a handle, in the order of their definition.
    static Vector<const InContextAliasBase*> findAliases(const char* handle);

    /// The alias that binds the option ("--samples"); null when there is none.
    static const InContextAliasBase* findOption(const char* option);

private:
    friend class InContextAliasBase;

    static void registerAlias(const InContextAliasBase& alias);
    static void unregisterAlias(const InContextAliasBase& alias) noexcept;
};

} // namespace Kr

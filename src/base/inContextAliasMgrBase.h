#pragma once

/// @file
/// The command line, as the initialisation framework keeps it.
///
/// The manager takes the command line over at the start; the words that no variable takes remain
/// for the application, in order and with the program name first, so that an option parser can walk
/// them:
/// @code
/// Kr::Vector<char*> words = Kr::InContextAliasMgrBase::getRemainingWords();
/// Kr::InOptionParser parser(static_cast<int>(words.size()), words.data(), "vo:");
/// @endcode
///
/// Pitfalls: the words live until `InInitMgr::finalize`. A word takes part as an option only before
/// the first `--`, which itself remains. Options that no variable knows remain too, and
/// `InOptionParser` stops at a word that begins with two dashes: have unknown options refused first
/// (`InSettings::refuseUnknownOptions`). Not for use by several threads.

#include <base/krBaseApi.h>
#include <base/vector.h>

namespace Kr
{

class KR_BASE_API InContextAliasMgrBase
{
public:
    /// The copies of the arguments, the program name included, each made with `new char[]`. The
    /// initialisation manager appends to the list, and releases the copies when it stops.
    static Vector<char*>& args();

    /// The words of the command line that no variable has taken so far, in order. The pointers lead
    /// into `args()`.
    static Vector<char*> getRemainingWords();
};

} // namespace Kr

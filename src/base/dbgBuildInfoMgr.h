#pragma once

/// @file
/// Whether the libraries of the process fit together.
///
/// The package `debugging` checks it when it starts, and `OsSharedLib` whenever a library is
/// loaded. Libraries do not fit if
/// - two of one name are loaded that are not the same build,
/// - one was compiled with headers of libKRbase of another major version than the libKRbase that is
///   loaded, or of a newer one,
/// - one uses another form of the standard library,
/// - their stamps differ, where `KR_BUILDINFO_CHECK_STAMPS` asks for that check.
///
/// A compiler or a build type that differs is logged, since it may be the answer to a riddle, and
/// nothing more. The first thing that does not fit stops the start with one sentence:
/// @code
/// for (const std::string& sentence : Kr::DbgBuildInfoMgr::getInstance().getMismatches())
///     std::cerr << sentence << '\n'; // "Effects 2.1.0 was built with libKRbase 1.3.0, but ..."
/// Kr::DbgBuildInfoMgr::getInstance().dump(std::cout); // all the libraries
/// @endcode
/// With `KR_BUILDINFO_NO_VALIDATE` in the environment nothing is stopped; what does not fit is
/// logged as a warning. The group is "BuildInfo" of "Base": `KR_LOG_GROUPS=Base=Informational`
/// shows all the libraries.

#include <base/dbgBuildInfo.h>
#include <base/dbgBuildInfoEx.h>
#include <base/vector.h>

#include <iosfwd>
#include <string>

namespace Kr
{

/// For any thread. What it returns holds until a library is unloaded.
class KR_BASE_API DbgBuildInfoMgr
{
public:
    static DbgBuildInfoMgr& getInstance();

    DbgBuildInfoMgr(const DbgBuildInfoMgr&) = delete;
    DbgBuildInfoMgr& operator=(const DbgBuildInfoMgr&) = delete;

    /// The libraries in the order in which they registered.
    Vector<const DbgBuildInfo*> getInfos() const;

    /// The first of that name, or null.
    const DbgBuildInfo* find(const char* name) const;

    /// A sentence for each thing that does not fit.
    Vector<std::string> getMismatches() const;

    /// Raises `DbgBuildInfoEx::ExMismatch` with the first mismatch, if there is one and
    /// `KR_BUILDINFO_NO_VALIDATE` is not in the environment.
    void validate() const;

    /// Logs all the libraries, what does not fit and what merely differs.
    void log() const;

    /// Writes a line for each library.
    void dump(std::ostream& os) const;

private:
    DbgBuildInfoMgr() = default;
};

} // namespace Kr

#pragma once

/// @file
/// What the check of the libraries of a process raises.
/// @code{.cpp}
/// #include <base/dbgBuildInfoMgr.h>
///
/// void check()
/// {
///     try
///     {
///         Kr::DbgBuildInfoMgr::getInstance().validate();
///     }
///     catch (const Kr::DbgBuildInfoEx::ExMismatch& error)
///     {
///         std::cerr << error.getReason() << '\n'; // one sentence
///     }
/// }
/// @endcode

#include <base/exBase.h>

namespace Kr
{

class KR_BASE_API DbgBuildInfoEx : public ExBase
{
public:
    class ExMismatch;

protected:
    DbgBuildInfoEx(const char* file, int line) noexcept;
};

/// Two libraries do not fit together; the reason is the sentence that says why.
class KR_BASE_API DbgBuildInfoEx::ExMismatch
    : public ExConcrete<DbgBuildInfoEx::ExMismatch, std::runtime_error, DbgBuildInfoEx>
{
public:
    ExMismatch(const char* file, int line, const char* sentence);
};

} // namespace Kr

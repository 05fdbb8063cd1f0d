#pragma once

/// @file
/// Starts the program's packages, and stops them at the end of a scope: see `InInitMgr`.

#include <base/inInitMgr.h>

namespace Kr
{

/// Pitfall: the destructor raises what `InInitMgr::finalize` raises, so a program that also calls
/// `finalize` itself gets `InEx::ExDoubleFinalise` at the end of the scope.
class InInitGuard
{
public:
    InInitGuard(int& argc, const char* const*& argv)
    {
        InInitMgr::getInstance().initialize(argc, argv);
    }
    ~InInitGuard() noexcept(false) { InInitMgr::getInstance().finalize(); }
    InInitGuard(const InInitGuard&) = delete;

    /// Does nothing.
    InInitGuard& operator=(const InInitGuard&) = default;
};

} // namespace Kr

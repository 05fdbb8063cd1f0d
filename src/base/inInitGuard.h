#pragma once

/// @file
/// Starts the program's packages, and stops them at the end of a scope: see `InInitMgr`.
/// @code{.cpp}
/// int main(int argc, char** argv)
/// {
///     const Kr::InInitGuard guard(argc, argv);
///     while (nextFrame())
///         render();
/// }
/// @endcode

#include <base/inInitMgr.h>

#include <exception>

namespace Kr
{

/// Pitfall: the destructor raises what `InInitMgr::finalize` raises, so a program that also calls
/// `finalize` itself gets `InEx::ExDoubleFinalise` at the end of the scope. Only while another
/// exception is on its way does it keep its own back, which the trace has seen.
class InInitGuard
{
public:
    InInitGuard(int& argc, const char* const*& argv)
    {
        InInitMgr::getInstance().initialize(argc, argv);
    }
    InInitGuard(int& argc, char**& argv) { InInitMgr::getInstance().initialize(argc, argv); }
    ~InInitGuard() noexcept(false)
    {
        try
        {
            InInitMgr::getInstance().finalize();
        }
        catch (...)
        {
            if (std::uncaught_exceptions() == 0)
                throw;
        }
    }
    InInitGuard(const InInitGuard&) = delete;

    /// Does nothing.
    InInitGuard& operator=(const InInitGuard&) = default;
};

} // namespace Kr

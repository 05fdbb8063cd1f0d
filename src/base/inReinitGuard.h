#pragma once

/// @file
/// Admits packages after the first initialisation pass.
/// @code{.cpp}
/// void loadLibrary(const char* name);
/// void loadEffects()
/// {
///     Kr::InReinitGuard guard;
///     loadLibrary("effects"); // its packages register
/// }                           // and are started here
/// @endcode

#include <base/inInitMgr.h>

#include <exception>

namespace Kr
{

/// Guards may be nested: the packages are started when the last one closes.
///
/// Pitfall: the destructor raises what the start raises. Only while another exception is on its way
/// does it keep its own back, which the trace has seen; `InInitMgr::dump` tells what is not up.
class InReinitGuard
{
public:
    InReinitGuard() { InInitMgr::getInstance().incReinitCount(); }
    ~InReinitGuard() noexcept(false)
    {
        try
        {
            InInitMgr::getInstance().decReinitCount();
        }
        catch (...)
        {
            if (std::uncaught_exceptions() == 0)
                throw;
        }
    }
    InReinitGuard(const InReinitGuard&) = delete;

    /// Does nothing.
    InReinitGuard& operator=(const InReinitGuard&) = default;
};

} // namespace Kr

#pragma once

/// @file
/// Admits packages after the first initialisation pass.
/// @code
/// {
///     Kr::InReinitGuard guard;
///     loadLibrary("effects"); // its packages register
/// }                           // and are started here
/// @endcode

#include <base/inInitMgr.h>

namespace Kr
{

/// Guards may be nested: the packages are started when the last one closes.
///
/// Pitfall: the destructor raises what the start raises.
class InReinitGuard
{
public:
    InReinitGuard() { InInitMgr::getInstance().incReinitCount(); }
    ~InReinitGuard() noexcept(false) { InInitMgr::getInstance().decReinitCount(); }
    InReinitGuard(const InReinitGuard&) = delete;

    /// Does nothing.
    InReinitGuard& operator=(const InReinitGuard&) = default;
};

} // namespace Kr

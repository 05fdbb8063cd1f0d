#pragma once

/// @file
/// The part of an initialisation variable that its package knows.

#include <base/krBaseApi.h>

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

    /// Discards the overrides that no variable has consumed.
    static void clearPendingOverrides();
};

} // namespace Kr

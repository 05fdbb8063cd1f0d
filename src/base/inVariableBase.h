#pragma once

/// @file
/// The part of an initialisation variable that its package knows. Programs declare `InVariable<T>`
/// and look at all of them by `InSettings`.
/// @code{.cpp}
/// /// Counts the starts of its package.
/// class StartCounter : public Kr::InVariableBase
/// {
/// public:
///     void initialize() override { ++count; }
///     void finalize() override {}
///     int count = 0;
/// };
/// @endcode
/// Not for use by several threads.

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
    /// Called when the start of the package failed, in place of `finalize`, also where `initialize`
    /// raised or was not come to.
    virtual void abandon() noexcept;

    /// Discards the overrides that no variable has consumed, and what is known of the command line.
    /// The manager calls this when it stops, right before it releases the words.
    static void clearPendingOverrides();
};

} // namespace Kr

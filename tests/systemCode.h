#pragma once

/// @file
/// The system's error of an action that may fail.

#include <base/exSysError.h>

/// The code of the system's error that `action` raises; 0 if it raises none.
template <class Action>
unsigned long codeOf(Action action)
{
    try
    {
        action();
    }
    catch (const Kr::ExSysErrorWindows& error)
    {
        return error.getErrorCode();
    }
    return 0;
}

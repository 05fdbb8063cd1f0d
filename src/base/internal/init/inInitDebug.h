#pragma once

/// @file
/// Internal to the initialisation framework: whether it reports its steps.

#include <base/osEnv.h>

namespace Kr
{

/// Asked anew at each report, so that a program can switch the reports on and off while it runs.
inline bool isInitDebugEnabled()
{
    return OsEnv::getVariable("KR_DEBUG_INITIALIZE") != nullptr;
}

} // namespace Kr

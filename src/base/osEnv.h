#pragma once

/// @file
/// The live environment of the process.
/// @code
/// if (const char* home = Kr::OsEnv::getVariable("HOME"))
///     std::cout << home << '\n';
/// Kr::OsEnv::putVariable("VIEWER_GRID=10"); // sets
/// Kr::OsEnv::putVariable("VIEWER_GRID=");   // removes
/// @endcode
/// Most programs want `InInitMgr::getEnv` (the environment as it was at the start), a typed
/// initialisation variable, or an `EnvVar` instead.
///
/// Pitfalls: a text that `getVariable` returns, and the block, hold only until the variable is next
/// changed. Nothing may change the environment while another thread reads it. Whether the case of a
/// name matters is the system's choice (on Windows it does not), and so is the order of the block.

#include <base/krBaseApi.h>

namespace Kr
{

class KR_BASE_API OsEnv
{
public:
    /// The variable's text; null when it is not set, or when the name is null or empty.
    static const char* getVariable(const char* name);

    /// Sets a variable from "NAME=value", or removes it with "NAME=". The text is copied.
    /// Raises `ExInternalError` when the text is null, has no "=" or has no name before it, and
    /// `ExSysErrorANSI` when the system refuses.
    static void putVariable(const char* assignment);

    /// The "NAME=value" texts, ended by a null; null when the process has no environment.
    static char** getBlock();
};

} // namespace Kr

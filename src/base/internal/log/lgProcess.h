#pragma once

/// @file
/// Who is logging.

#include <base/internal/errors/processIdentity.h>

namespace Kr
{

using LgProcess = ProcessIdentity;

} // namespace Kr

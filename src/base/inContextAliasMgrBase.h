#pragma once

/// @file
/// The command line, as the initialisation framework keeps it.

#include <base/krBaseApi.h>
#include <base/vector.h>

namespace Kr
{

class KR_BASE_API InContextAliasMgrBase
{
public:
    /// The copies of the arguments, the program name included, each made with `new char[]`.
    static Vector<char*>& args();
};

} // namespace Kr

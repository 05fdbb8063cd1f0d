#pragma once

/// @file
/// What an initialisation variable sees of its package.

#include <base/krBaseApi.h>

namespace Kr
{

class InVariableBase;

/// The interface through which a variable attaches itself to its package and leaves it again.
class KR_BASE_API InPackageInitBase
{
public:
    virtual ~InPackageInitBase() = default;
    virtual void addDependency(InVariableBase* variable) = 0;
    virtual void removeDependency(InVariableBase* variable) = 0;
};

} // namespace Kr

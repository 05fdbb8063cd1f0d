#include <base/inVariableBase.h>

namespace Kr
{

InVariableBase::~InVariableBase() = default;

void InVariableBase::clearPendingOverrides()
{
}

} // namespace Kr

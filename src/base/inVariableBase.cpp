#include <base/inVariableBase.h>

#include <base/internal/init/inCommandLine.h>
#include <base/internal/init/inNameTable.h>

namespace Kr
{

InVariableBase::~InVariableBase() = default;

void InVariableBase::abandon() noexcept
{
}

void InVariableBase::clearPendingOverrides()
{
    InNameTable::getInstance().clearOverrides();
    InCommandLine::getInstance().forget();
}

} // namespace Kr

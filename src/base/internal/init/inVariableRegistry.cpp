#include <base/internal/init/inVariableRegistry.h>

#include <base/inContextAlias.h>
#include <base/inContextAliasMgrBase.h>
#include <base/inEx.h>
#include <base/internal/init/inNamedVariable.h>
#include <base/raise.h>

namespace Kr
{

namespace
{

bool isOptionOfOther(const std::string& handle)
{
    const InContextAliasBase* const alias =
        InContextAliasMgrBase::findOption(("--" + handle).c_str());
    return alias != nullptr && alias->getHandle() != handle;
}

} // namespace

InVariableRegistry& InVariableRegistry::getInstance()
{
    static InVariableRegistry registry;
    return registry;
}

void InVariableRegistry::add(InNamedVariable& variable)
{
    const char* const handle = variable.getHandle();
    if (find(handle) != nullptr || isOptionOfOther(handle))
        raise<InEx::ExHandleAlreadyInUse>(KR_HERE, handle);
    _variables.emplace(handle, &variable);
}

void InVariableRegistry::remove(const InNamedVariable& variable) noexcept
{
    const auto found = _variables.find(variable.getHandle());
    if (found != _variables.end() && found->second == &variable)
        _variables.erase(found);
}

InNamedVariable* InVariableRegistry::find(const char* handle) const
{
    const auto found = _variables.find(handle);
    return found != _variables.end() ? found->second : nullptr;
}

} // namespace Kr

#include <base/internal/init/inNameTable.h>

#include <base/inEx.h>
#include <base/raise.h>

#include <algorithm>

namespace Kr
{

namespace
{

void erase(Vector<std::string>& names, const std::string& name) noexcept
{
    names.erase(std::remove(names.begin(), names.end(), name), names.end());
}

} // namespace

InNameTable& InNameTable::getInstance()
{
    static InNameTable table;
    return table;
}

void InNameTable::addVariable(const std::string& handle, InNamedVariable& variable)
{
    const auto option = _options.find("--" + handle);
    const bool isOptionOfOther = option != _options.end() && option->second != handle;
    if (getNames(handle).variable != nullptr || isOptionOfOther)
        raise<InEx::ExHandleAlreadyInUse>(KR_HERE, handle.c_str());
    _handles[handle].variable = &variable;
}

void InNameTable::removeVariable(const std::string& handle,
                                 const InNamedVariable& variable) noexcept
{
    const auto entry = _handles.find(handle);
    if (entry == _handles.end() || entry->second.variable != &variable)
        return;
    entry->second.variable = nullptr;
    forgetIfEmpty(entry);
}

void InNameTable::addAlias(const std::string& handle, const std::string& option,
                           const std::string& environmentName)
{
    if (_isClosed)
        raise<InEx::ExNoNewContextAliasAfterInit>(
            KR_HERE, handle.c_str(), (option.empty() ? environmentName : option).c_str());
    if (!option.empty())
    {
        const bool isHandleOfOther =
            option.substr(2) != handle && getNames(option.substr(2)).variable != nullptr;
        if (_options.count(option) != 0 || isHandleOfOther)
            raise<InEx::ExContextAliasAlreadyDefined>(KR_HERE, option.c_str());
    }
    if (_environmentNames.count(environmentName) != 0)
        raise<InEx::ExContextAliasAlreadyDefined>(KR_HERE, environmentName.c_str());

    try
    {
        bind(handle, option, environmentName);
    }
    catch (...)
    {
        removeAlias(handle, option, environmentName);
        throw;
    }
}

void InNameTable::bind(const std::string& handle, const std::string& option,
                       const std::string& environmentName)
{
    InNames& names = _handles[handle];
    if (!option.empty())
    {
        names.options.push_back(option);
        _options.emplace(option, handle);
    }
    if (!environmentName.empty())
    {
        names.environmentNames.push_back(environmentName);
        _environmentNames.emplace(environmentName, handle);
    }
}

void InNameTable::removeAlias(const std::string& handle, const std::string& option,
                              const std::string& environmentName) noexcept
{
    const auto entry = _handles.find(handle);
    if (entry == _handles.end())
        return;
    erase(entry->second.options, option);
    erase(entry->second.environmentNames, environmentName);
    _options.erase(option);
    _environmentNames.erase(environmentName);
    forgetIfEmpty(entry);
}

std::optional<std::string> InNameTable::takeOverride(const std::string& handle)
{
    std::optional<std::string> text;
    const auto entry = _handles.find(handle);
    if (entry != _handles.end())
        text.swap(entry->second.overrideText);
    return text;
}

void InNameTable::clearOverrides() noexcept
{
    for (auto entry = _handles.begin(); entry != _handles.end();)
    {
        const auto here = entry++;
        here->second.overrideText.reset();
        forgetIfEmpty(here);
    }
}

const InNames& InNameTable::getNames(std::string_view handle) const
{
    static const InNames none;
    const auto entry = _handles.find(handle);
    return entry != _handles.end() ? entry->second : none;
}

const InNames* InNameTable::findOption(std::string_view option) const
{
    const auto alias = _options.find(option);
    if (alias != _options.end())
        return &getNames(alias->second);
    const InNames& own = getNames(option.substr(2));
    return own.variable != nullptr ? &own : nullptr;
}

void InNameTable::forgetIfEmpty(Handles::iterator entry) noexcept
{
    const InNames& names = entry->second;
    if (names.variable == nullptr && names.options.empty() && names.environmentNames.empty() &&
        !names.overrideText.has_value())
        _handles.erase(entry);
}

} // namespace Kr

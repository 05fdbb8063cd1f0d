#include <base/inContextAliasMgrBase.h>

#include <base/inContextAlias.h>
#include <base/inEx.h>
#include <base/internal/init/inCommandLine.h>
#include <base/internal/init/inVariableRegistry.h>
#include <base/raise.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <string_view>

namespace Kr
{

namespace
{

/// What aliases are found by. The keys are the aliases' own texts.
struct AliasTable
{
    std::multimap<std::string_view, const InContextAliasBase*> byHandle;
    std::map<std::string_view, const InContextAliasBase*> byOption;
    std::map<std::string_view, const InContextAliasBase*> byEnvironmentName;
    bool isClosed = false;
};

AliasTable& aliases()
{
    static AliasTable table;
    return table;
}

/// Whether the option is the one by which another handle's variable always answers.
bool isHandleOfOther(const InContextAliasBase& alias)
{
    return alias.getOption() != nullptr &&
           std::strcmp(alias.getOption() + 2, alias.getHandle()) != 0 &&
           InVariableRegistry::getInstance().find(alias.getOption() + 2) != nullptr;
}

/// Takes the alias, and no other of the same key, out of a table.
template <class Table>
void eraseAlias(Table& table, const char* key, const InContextAliasBase& alias)
{
    if (key == nullptr)
        return;
    const auto range = table.equal_range(key);
    for (auto entry = range.first; entry != range.second; ++entry)
    {
        if (entry->second != &alias)
            continue;
        table.erase(entry);
        return;
    }
}

} // namespace

Vector<char*>& InContextAliasMgrBase::args()
{
    // The copies of a program that exits without finalize.
    struct Arguments
    {
        ~Arguments()
        {
            for (const char* word : words)
                delete[] word;
        }
        Vector<char*> words;
    };
    static Arguments arguments;
    return arguments.words;
}

Vector<char*> InContextAliasMgrBase::getRemainingWords()
{
    return InCommandLine::getInstance().getRemainingWords();
}

void InContextAliasMgrBase::closeRegistration() noexcept
{
    aliases().isClosed = true;
}

Vector<const InContextAliasBase*> InContextAliasMgrBase::findAliases(const char* handle)
{
    Vector<const InContextAliasBase*> found;
    const auto range = aliases().byHandle.equal_range(handle);
    std::for_each(range.first, range.second,
                  [&found](const auto& entry) { found.push_back(entry.second); });
    return found;
}

const InContextAliasBase* InContextAliasMgrBase::findOption(const char* option)
{
    const auto found = aliases().byOption.find(option);
    return found != aliases().byOption.end() ? found->second : nullptr;
}

void InContextAliasMgrBase::registerAlias(const InContextAliasBase& alias)
{
    AliasTable& table = aliases();
    const char* const option = alias.getOption();
    const char* const environmentName = alias.getEnvironmentName();
    if (table.isClosed)
        raise<InEx::ExNoNewContextAliasAfterInit>(KR_HERE, alias.getHandle(),
                                                  option != nullptr ? option : environmentName);
    if (option != nullptr && (table.byOption.count(option) != 0 || isHandleOfOther(alias)))
        raise<InEx::ExContextAliasAlreadyDefined>(KR_HERE, option);
    if (environmentName != nullptr && table.byEnvironmentName.count(environmentName) != 0)
        raise<InEx::ExContextAliasAlreadyDefined>(KR_HERE, environmentName);

    try
    {
        table.byHandle.emplace(alias.getHandle(), &alias);
        if (option != nullptr)
            table.byOption.emplace(option, &alias);
        if (environmentName != nullptr)
            table.byEnvironmentName.emplace(environmentName, &alias);
    }
    catch (...)
    {
        unregisterAlias(alias);
        throw;
    }
}

void InContextAliasMgrBase::unregisterAlias(const InContextAliasBase& alias) noexcept
{
    AliasTable& table = aliases();
    eraseAlias(table.byHandle, alias.getHandle(), alias);
    eraseAlias(table.byOption, alias.getOption(), alias);
    eraseAlias(table.byEnvironmentName, alias.getEnvironmentName(), alias);
}

} // namespace Kr

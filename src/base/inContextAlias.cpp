#include <base/inContextAlias.h>

#include <base/assert.h>
#include <base/inContextAliasMgrBase.h>
#include <base/internal/errors/fixedText.h>

namespace Kr
{

namespace
{

bool isOption(const std::string& text)
{
    return text.size() > 2 && text.compare(0, 2, "--") == 0 && text.find('=') == std::string::npos;
}

} // namespace

InContextAliasBase::InContextAliasBase(const char* handle, const char* option,
                                       const char* environmentName)
    : _handle(orEmpty(handle))
    , _option(orEmpty(option))
    , _environmentName(orEmpty(environmentName))
{
    KR_ASSERT(!_handle.empty());
    KR_ASSERT(!_option.empty() || !_environmentName.empty());
    KR_ASSERT(_option.empty() || isOption(_option));
    KR_ASSERT(_environmentName.find('=') == std::string::npos);
    InContextAliasMgrBase::registerAlias(*this);
}

InContextAliasBase::~InContextAliasBase()
{
    InContextAliasMgrBase::unregisterAlias(*this);
}

InContextAlias::InContextAlias(const char* handle, const char* option, const char* environmentName)
    : InContextAliasBase(handle, option, environmentName)
{
}

} // namespace Kr

#include <base/inContextAlias.h>

#include <base/assert.h>
#include <base/internal/errors/fixedText.h>
#include <base/internal/init/inCommandLine.h>
#include <base/internal/init/inNameTable.h>

namespace Kr
{

namespace
{

bool isOption(const std::string& text)
{
    return InCommandLine::isOption(text) && InCommandLine::getOption(text) == text;
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
    InNameTable::getInstance().addAlias(_handle, _option, _environmentName);
}

InContextAliasBase::~InContextAliasBase()
{
    InNameTable::getInstance().removeAlias(_handle, _option, _environmentName);
}

InContextAlias::InContextAlias(const char* handle, const char* option, const char* environmentName)
    : InContextAliasBase(handle, option, environmentName)
{
}

} // namespace Kr

#include <base/dbgBuildInfo.h>

#include <base/internal/libraries/dbgBuildInfoRegistry.h>

namespace Kr
{

namespace
{

const char* orEmpty(const char* text)
{
    return text != nullptr ? text : "";
}

} // namespace

DbgBuildInfo::DbgBuildInfo(const char* name, const char* version, std::int32_t baseVersion,
                           const char* compiler, const char* runtime, const char* buildType,
                           const char* stamp)
    : _name(orEmpty(name))
    , _version(orEmpty(version))
    , _baseVersion(baseVersion)
    , _compiler(orEmpty(compiler))
    , _runtime(orEmpty(runtime))
    , _buildType(orEmpty(buildType))
    , _stamp(orEmpty(stamp))
{
    DbgBuildInfoRegistry::getInstance().add(*this);
}

DbgBuildInfo::~DbgBuildInfo()
{
    DbgBuildInfoRegistry::getInstance().remove(*this);
}

std::string DbgBuildInfo::describe() const
{
    std::string text = _name + ' ' + _version + ", " + _compiler + ", " + _runtime + ", " +
                       _buildType + ", built with libKRbase " +
                       DbgBuildInfoRegistry::formatVersion(_baseVersion);
    if (!_stamp.empty())
        text += ", stamp " + _stamp;
    return text;
}

} // namespace Kr

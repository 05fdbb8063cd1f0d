#include <base/dbgBuildInfoMgr.h>

#include <base/inInitMgr.h>
#include <base/internal/libraries/dbgBuildInfoRegistry.h>
#include <base/log.h>
#include <base/raise.h>

#include <ostream>

KR_BUILD_INFO("libKRbase", KR_BUILD_TEXT(KR_VERSION_MAJOR) "." KR_BUILD_TEXT(
                               KR_VERSION_MINOR) "." KR_BUILD_TEXT(KR_VERSION_PATCH));

namespace Kr
{

namespace
{

constexpr std::int32_t majorVersion = KR_MAKE_VERSION(1, 0, 0);

std::string title(const DbgBuildInfo& info)
{
    return info.getName() + ' ' + info.getVersion();
}

/// What the stamps say, cut out of the sentence if there is none.
std::string stampOf(const DbgBuildInfo& info)
{
    return info.getStamp().empty() ? "no stamp" : "the stamp " + info.getStamp();
}

void addIf(bool differs, const std::string& sentence, Vector<std::string>& sentences)
{
    if (differs)
        sentences.push_back(sentence);
}

/// Holds a library against libKRbase.
void compareWithBase(const DbgBuildInfo& info, Vector<std::string>& sentences)
{
    const std::int32_t built = info.getBaseVersion();
    addIf(built / majorVersion != getVersion() / majorVersion || built > getVersion(),
          title(info) + " was built with libKRbase " + DbgBuildInfoRegistry::formatVersion(built) +
              ", but libKRbase " + getVersionText() + " is loaded.",
          sentences);
    addIf(info.getRuntime() != krBuildInfo.getRuntime(),
          title(info) + " uses " + info.getRuntime() + ", but libKRbase uses " +
              krBuildInfo.getRuntime() + '.',
          sentences);
    addIf(InInitMgr::getEnv("KR_BUILDINFO_CHECK_STAMPS") != nullptr &&
              info.getStamp() != krBuildInfo.getStamp(),
          title(info) + " has " + stampOf(info) + ", but libKRbase has " + stampOf(krBuildInfo) +
              '.',
          sentences);
}

/// Holds a library against one of the same name that registered before.
void compareWithNamesake(const DbgBuildInfo& info, const DbgBuildInfo& first,
                         Vector<std::string>& sentences)
{
    addIf(info.describe() != first.describe(),
          info.getName() + " is loaded twice, as " + first.describe() + ", and as " +
              info.describe() + '.',
          sentences);
}

void logDifferences(const DbgBuildInfo& info)
{
    const LgMinorGroup* const group = LgGroups::KR_XGLUE(MinorLevel, BuildInfo);
    if (info.getCompiler() != krBuildInfo.getCompiler())
        KR_LOG(group, Informational)
            << title(info).c_str() << " was built by " << info.getCompiler().c_str()
            << ", libKRbase by " << krBuildInfo.getCompiler().c_str();
    if (info.getBuildType() != krBuildInfo.getBuildType())
        KR_LOG(group, Informational)
            << title(info).c_str() << " is a " << info.getBuildType().c_str()
            << " build, libKRbase a " << krBuildInfo.getBuildType().c_str() << " build";
}

} // namespace

DbgBuildInfoMgr& DbgBuildInfoMgr::getInstance()
{
    static DbgBuildInfoMgr manager;
    return manager;
}

Vector<const DbgBuildInfo*> DbgBuildInfoMgr::getInfos() const
{
    Vector<const DbgBuildInfo*> infos;
    for (const DbgBuildInfo* info : DbgBuildInfoRegistry::getInstance().getInfos())
        infos.push_back(info);
    return infos;
}

const DbgBuildInfo* DbgBuildInfoMgr::find(const char* name) const
{
    for (const DbgBuildInfo* info : getInfos())
        if (name != nullptr && info->getName() == name)
            return info;
    return nullptr;
}

Vector<std::string> DbgBuildInfoMgr::getMismatches() const
{
    Vector<std::string> sentences;
    for (const DbgBuildInfo* info : getInfos())
    {
        const DbgBuildInfo* const first = find(info->getName().c_str());
        if (first != nullptr && first != info)
            compareWithNamesake(*info, *first, sentences);
        compareWithBase(*info, sentences);
    }
    return sentences;
}

void DbgBuildInfoMgr::validate() const
{
    if (InInitMgr::getEnv("KR_BUILDINFO_NO_VALIDATE") != nullptr)
        return;
    const Vector<std::string> sentences = getMismatches();
    if (!sentences.empty())
        raise<DbgBuildInfoEx::ExMismatch>(KR_HERE, sentences.front().c_str());
}

void DbgBuildInfoMgr::log() const
{
    const LgMinorGroup* const group = LgGroups::KR_XGLUE(MinorLevel, BuildInfo);
    for (const DbgBuildInfo* info : getInfos())
    {
        KR_LOG(group, Informational) << info->describe().c_str();
        logDifferences(*info);
    }
    for (const std::string& sentence : getMismatches())
        KR_LOG(group, Warning) << sentence.c_str();
}

void DbgBuildInfoMgr::dump(std::ostream& os) const
{
    for (const DbgBuildInfo* info : getInfos())
        os << info->describe() << '\n';
}

} // namespace Kr

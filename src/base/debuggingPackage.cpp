#include <base/assert.h>
#include <base/dbgBuildInfoMgr.h>
#include <base/inInit.imp>
#include <base/krInitPackages.h>
#include <base/lgGroups.h>

template class Kr::InInit<KrInit::debugging>;

static Kr::InInit<KrInit::debugging> package;

Kr::LgMinorGroup* LgGroups::KR_XGLUE(MinorLevel, BuildInfo) = nullptr;

void KrInit::debugging::start()
{
    Kr::DbgBuildInfoMgr::getInstance().validate();
    KR_ASSERT_TEXT(LgGroups::KR_XGLUE(MinorLevel, BuildInfo) == nullptr,
                   "LgGroups::KR_XGLUE( MinorLevel, BuildInfo ) == 0", __LINE__);
    LgGroups::KR_XGLUE(MinorLevel, BuildInfo) =
        new Kr::LgMinorGroup(Kr::LgMajorGroup::getInstanceForName("Base"), "BuildInfo");
    Kr::DbgBuildInfoMgr::getInstance().log();
}

void KrInit::debugging::stop()
{
    KR_ASSERT_TEXT(LgGroups::KR_XGLUE(MinorLevel, BuildInfo) != nullptr,
                   "LgGroups::KR_XGLUE( MinorLevel, BuildInfo ) != 0", __LINE__);
    delete LgGroups::KR_XGLUE(MinorLevel, BuildInfo);
    LgGroups::KR_XGLUE(MinorLevel, BuildInfo) = nullptr;
}

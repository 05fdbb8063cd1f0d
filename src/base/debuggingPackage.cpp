#include <base/assert.h>
#include <base/dbgBuildInfoMgr.h>
#include <base/inInit.imp>
#include <base/krInitPackages.h>
#include <base/lgGroups.h>

template class Kr::InInit<KrInit::debugging>;

static Kr::InInit<KrInit::debugging> package;

Kr::LgMinorGroup* LgGroups::KR_XGLUE(MinorLevel, BuildInfo) = nullptr;

// The spacing and the zeros of the checks are part of their texts.
// clang-format off
// NOLINTBEGIN(modernize-use-nullptr)
void KrInit::debugging::start()
{
    Kr::DbgBuildInfoMgr::getInstance().validate();
    KR_ASSERT(LgGroups::KR_XGLUE( MinorLevel, BuildInfo ) == 0);
    LgGroups::KR_XGLUE(MinorLevel, BuildInfo) =
        new Kr::LgMinorGroup(Kr::LgMajorGroup::getInstanceForName("Base"), "BuildInfo");
    Kr::DbgBuildInfoMgr::getInstance().log();
}

void KrInit::debugging::stop()
{
    KR_ASSERT(LgGroups::KR_XGLUE( MinorLevel, BuildInfo ) != 0);
    delete LgGroups::KR_XGLUE(MinorLevel, BuildInfo);
    LgGroups::KR_XGLUE(MinorLevel, BuildInfo) = nullptr;
}
// NOLINTEND(modernize-use-nullptr)
// clang-format on

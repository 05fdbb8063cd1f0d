#include <base/internal/log/lgFork.h>

#include <base/internal/log/lgLogState.h>
#include <base/internal/log/lgProcess.h>

namespace Kr
{

namespace
{

bool isMainForking = false;

void beforeFork()
{
    isMainForking = LgLogState::isMainThread();
    LgLogState::lockForFork();
}

void inChild()
{
    LgLogState::beginForkedSession(isMainForking);
    LgLogState::unlockAfterFork();
}

} // namespace

void LgFork::install()
{
    static const bool isInstalled =
        (LgProcess::onFork(beforeFork, LgLogState::unlockAfterFork, inChild), true);
    static_cast<void>(isInstalled);
}

} // namespace Kr

#include <base/internal/log/lgFork.h>

#include <base/internal/errors/processIdentity.h>
#include <base/internal/log/lgGroupNames.h>
#include <base/internal/log/lgLogState.h>

namespace Kr
{

namespace
{

bool isMainForking = false;

void beforeFork()
{
    isMainForking = LgLogState::isMainThread();
    LgLogState::lockForFork();
    LgGroupNames::getMutex().lock();
}

void inParent()
{
    LgGroupNames::getMutex().unlock();
    LgLogState::unlockAfterFork();
}

void inChild()
{
    LgLogState::beginForkedSession(isMainForking);
    inParent();
}

} // namespace

void LgFork::install()
{
    static const bool isInstalled = (ProcessIdentity::onFork(beforeFork, inParent, inChild), true);
    static_cast<void>(isInstalled);
}

} // namespace Kr

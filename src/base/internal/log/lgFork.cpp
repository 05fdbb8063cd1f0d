#include <base/internal/log/lgFork.h>

#include <base/internal/errors/processIdentity.h>
#include <base/internal/log/lgGroupNames.h>
#include <base/internal/log/lgLogState.h>
#include <base/lgListener.h>

namespace Kr
{

bool LgFork::_isMainForking = false;

/// Several threads may fork at once: they do it one after the other.
void LgFork::prepare()
{
    LgLogState::lockForFork();
    LgListener::lockForFork();
    LgGroupNames::getMutex().lock();
    _isMainForking = LgLogState::isMainThread();
}

void LgFork::goOnInParent()
{
    LgGroupNames::getMutex().unlock();
    LgListener::unlockInParent();
    LgLogState::unlockAfterFork();
}

void LgFork::goOnInChild()
{
    LgLogState::beginForkedSession(_isMainForking);
    LgGroupNames::getMutex().unlock();
    LgListener::unlockInChild();
    LgLogState::unlockAfterFork();
}

void LgFork::install()
{
    static const bool isInstalled =
        (ProcessIdentity::onFork(prepare, goOnInParent, goOnInChild), true);
    static_cast<void>(isInstalled);
}

} // namespace Kr

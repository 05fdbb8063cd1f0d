#include <base/lgLog.h>

#include <base/internal/log/lgFork.h>
#include <base/internal/log/lgLogState.h>
#include <base/internal/log/lgProducer.h>
#include <base/internal/log/lgRescue.h>
#include <base/internal/log/lgTermination.h>
#include <base/lgGroups.h>
#include <base/osEnv.h>

#include <iostream>
#include <new>

namespace Kr
{

namespace
{

/// A start that memory was too short for can be tried again.
void openGroups(LgLog::Lookup lookup)
{
    try
    {
        LgMajorGroup::initialize(lookup("KR_LOG_DEFAULT_LEVEL"), lookup("KR_LOG_GROUPS"));
        if (const char* limits = lookup("KR_LOG_LIMITS"))
            LgMajorGroup::parseLimits(limits);
    }
    catch (const std::bad_alloc&)
    {
        LgMajorGroup::finalize();
        throw;
    }
}

/// What is left of processes that were killed comes first.
void recover(const LgSettings& settings)
{
    for (const std::string& problem : LgRescue(settings.directory, &settings).run().problems)
        std::cerr << problem << std::endl;
}

} // namespace

void LgLog::init()
{
    init(OsEnv::getVariable);
}

void LgLog::init(Lookup lookup)
{
    const LgSettings settings = LgSettings::read(lookup, std::cout);
    recover(settings);
    auto session = std::make_unique<LgSession>(settings);
    openGroups(lookup);
    LgFork::install();
    LgTermination::install();
    LgLogState::start(std::move(session));
}

void LgLog::destroy()
{
    LgLogState::stop();
    LgProducer::endWithSession();
    LgTermination::remove();
    LgMajorGroup::finalize();
}

LgQueue* LgLog::getQueue() noexcept
{
    LgProducer* producer = LgProducer::getLasting();
    return producer != nullptr ? producer->shareQueue() : nullptr;
}

void LgLog::flush() noexcept
{
    LgLogState::drain(LgDrain::toSystem);
}

void LgLog::flushToDisk() noexcept
{
    LgLogState::drain(LgDrain::toDisk);
}

std::uint64_t LgLog::getLostCount()
{
    return LgLogState::getLostCount();
}

std::uint64_t LgLog::getCutCount()
{
    return LgLogState::getCutCount();
}

std::string LgLog::getDirectory()
{
    return LgLogState::getSettings().directory;
}

std::string LgLog::getTimelinePath()
{
    return LgLogState::getSettings().timelinePath;
}

LgEndGuard::~LgEndGuard()
{
    LgLogState::drainAtEnd(LgDrain::toSystem);
}

} // namespace Kr

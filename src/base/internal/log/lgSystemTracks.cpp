#include <base/internal/log/lgSystemTracks.h>

#include <base/hwCounter.h>
#include <base/internal/errors/processIdentity.h>
#include <base/internal/log/lgLogState.h>
#include <base/lgCounters.h>
#include <base/lgLog.h>
#include <base/prEx.h>
#include <base/prQuery.h>

#include <cstdio>
#include <memory>

namespace Kr
{

namespace
{

struct Track
{
    const char* name;
    const char* counter;
};

constexpr Track processTracks[] = {
    {"process (% of one processor)", "% Processor Time"},
    {"working set (bytes)", "Working Set"},
};
constexpr std::size_t processTrackCount = sizeof processTracks / sizeof *processTracks;

void complain(const PrEx& error)
{
    std::fprintf(stderr, "The timeline lacks counters: %s\n", error.getReason());
}

/// The sampling of one session of the logger; used by one thread at a time, whoever drains.
class Sampler
{
public:
    explicit Sampler(double interval)
        : _interval(interval)
    {
        try
        {
            _processor = &_query.add("\\Processor(_Total)\\% Processor Time");
        }
        catch (const PrEx& error)
        {
            complain(error);
        }
        findProcess();
    }

    void tell(LgCounters::Add add, void* timeline)
    {
        const unsigned long long now = HwCounter::timeStamp();
        if (_hasFailed || (_lastStamp != 0 && HwCounter::seconds(_lastStamp, now) < _interval))
            return;
        _lastStamp = now;
        try
        {
            _query.collect();
        }
        catch (const PrEx& error)
        {
            complain(error);
            _hasFailed = true;
            return;
        }
        show(add, timeline);
    }

private:
    void show(LgCounters::Add add, void* timeline)
    {
        const auto showOne = [=](const char* name, const PrCounter* counter)
        {
            if (counter != nullptr && counter->isAvailable())
                add(timeline, name, counter->getValue(0.));
        };
        showOne("processor (%)", _processor);
        if (_identity == nullptr)
            return;
        if (_identity->getValue(-1.) != static_cast<double>(ProcessIdentity::getProcessId()))
            findProcess(); // its name has come to be another instance's; the next sample has it
        else
            for (std::size_t i = 0; i < processTrackCount; ++i)
                showOne(processTracks[i].name, _process[i]);
    }

    /// Looks up which instance this process is.
    void findProcess()
    {
        if (_identity != nullptr)
            forgetProcess();
        try
        {
            const std::string self = PrQuery::findProcess(ProcessIdentity::getProcessId());
            for (std::size_t i = 0; i < processTrackCount; ++i)
                _process[i] = &_query.addExpected({"Process", self, processTracks[i].counter});
            _identity = &_query.addExpected({"Process", self, "ID Process"});
        }
        catch (const PrEx& error)
        {
            complain(error);
        }
    }

    void forgetProcess()
    {
        for (const PrCounter*& counter : _process)
        {
            _query.remove(*counter);
            counter = nullptr;
        }
        _query.remove(*_identity);
        _identity = nullptr;
    }

    const double _interval; ///< in seconds
    unsigned long long _lastStamp = 0;
    bool _hasFailed = false;
    PrQuery _query;
    const PrCounter* _processor = nullptr;
    const PrCounter* _process[processTrackCount] = {};
    const PrCounter* _identity = nullptr; ///< the number of the process that is being counted
};

std::unique_ptr<Sampler> sampler;

void tellCounters(LgCounters::Add add, void* timeline)
{
    sampler->tell(add, timeline);
}

} // namespace

void LgSystemTracks::start(double interval)
{
    if (interval <= 0. || LgLog::getTimelinePath().empty())
        return;
    try
    {
        sampler = std::make_unique<Sampler>(interval);
    }
    catch (const PrEx& error)
    {
        complain(error);
        return;
    }
    LgCounters::addSource(&tellCounters);
    LgLogState::startReader(LgLogState::getSessionNumber()); // nobody else may log
}

void LgSystemTracks::stop() noexcept
{
    LgCounters::removeSource(&tellCounters);
    sampler.reset();
}

} // namespace Kr

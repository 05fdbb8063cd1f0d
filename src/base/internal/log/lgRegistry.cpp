#include <base/internal/log/lgRegistry.h>

#include <algorithm>
#include <iterator>

namespace Kr
{

void LgRegistry::addQueue(std::shared_ptr<LgQueue> queue)
{
    const std::lock_guard<std::mutex> lock(_mutex);
    _newQueues.push_back(std::move(queue));
}

const std::vector<std::shared_ptr<LgQueue>>& LgRegistry::getQueues()
{
    const std::lock_guard<std::mutex> lock(_mutex);
    std::move(_newQueues.begin(), _newQueues.end(), std::back_inserter(_queues));
    _newQueues.clear();
    return _queues;
}

/// A creator's end is looked at first: nothing can be added to a queue after it.
void LgRegistry::dropFinishedQueues()
{
    const auto isFinished = [](const std::shared_ptr<LgQueue>& queue)
    { return !queue->isCreatorAlive() && queue->isEmpty(); };
    _queues.erase(std::remove_if(_queues.begin(), _queues.end(), isFinished), _queues.end());
}

void LgRegistry::setOutput(LgTypes::Level level, std::shared_ptr<LgOutput> output)
{
    _outputs[level] = std::move(output);
    _distinctOutputs.clear();
    for (const std::shared_ptr<LgOutput>& each : _outputs)
        if (each != nullptr && std::find(_distinctOutputs.begin(), _distinctOutputs.end(),
                                         each.get()) == _distinctOutputs.end())
            _distinctOutputs.push_back(each.get());
}

void LgRegistry::flushOutputs(bool now)
{
    for (LgOutput* output : _distinctOutputs)
        output->flush(now);
}

void LgRegistry::syncOutputs()
{
    for (LgOutput* output : _distinctOutputs)
        output->sync();
}

void LgRegistry::closeOutputs()
{
    for (LgOutput* output : _distinctOutputs)
        output->close();
}

std::uint64_t LgRegistry::getLostCount() const
{
    std::uint64_t count = 0;
    for (const LgOutput* output : _distinctOutputs)
        count += output->getLostCount();
    return count;
}

} // namespace Kr

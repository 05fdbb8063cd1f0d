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

} // namespace Kr

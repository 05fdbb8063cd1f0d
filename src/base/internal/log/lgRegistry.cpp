#include <base/internal/log/lgRegistry.h>

namespace Kr
{

void LgRegistry::addQueue(std::shared_ptr<LgQueue> queue)
{
    Queues one;
    one.push_back(std::move(queue));
    const std::lock_guard<std::mutex> lock(_mutex);
    _newQueues.splice(_newQueues.end(), one);
}

const LgRegistry::Queues& LgRegistry::getQueues() noexcept
{
    const std::lock_guard<std::mutex> lock(_mutex);
    _queues.splice(_queues.end(), _newQueues);
    return _queues;
}

/// A creator's end is looked at first: nothing can be added to a queue after it.
void LgRegistry::dropFinishedQueues() noexcept
{
    _queues.remove_if([](const std::shared_ptr<LgQueue>& queue)
                      { return !queue->isCreatorAlive() && queue->isEmpty(); });
}

void LgRegistry::leaveQueues() noexcept
{
    for (const std::shared_ptr<LgQueue>& queue : getQueues())
        queue->leave();
}

} // namespace Kr

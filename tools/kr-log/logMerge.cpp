#include "logMerge.h"

#include <algorithm>
#include <utility>

namespace KrLog
{

namespace
{

constexpr std::size_t window = 4096;

} // namespace

void Merge::add(const std::string& path, bool withRotated)
{
    _sources.push_back({LogFile(path, withRotated), {}});
}

bool Merge::isLater(const Waiting& a, const Waiting& b)
{
    return a.time != b.time ? a.time > b.time : a.number > b.number;
}

void Merge::advance(Source& source, bool isFollowing)
{
    std::string line;
    if (source.head ||
        (!source.file.takeLine(line) && (isFollowing || !source.file.takeRest(line))))
        return;
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
    source.head = parseRecord(line);
    if (!source.head->time.empty())
        source.lastTime = source.head->time;
}

Merge::Source* Merge::findEarliest()
{
    Source* earliest = nullptr;
    for (Source& source : _sources)
        if (source.head && (earliest == nullptr || source.lastTime < earliest->lastTime))
            earliest = &source;
    return earliest;
}

void Merge::wait(Source& source)
{
    _waiting.push_back({source.lastTime, _count++, *std::exchange(source.head, std::nullopt)});
    std::push_heap(_waiting.begin(), _waiting.end(), isLater);
}

void Merge::handOver(std::size_t stay, const Take& take)
{
    while (_waiting.size() > stay)
    {
        std::pop_heap(_waiting.begin(), _waiting.end(), isLater);
        take(_waiting.back().record);
        _waiting.pop_back();
    }
}

void Merge::run(const Take& take, bool isFollowing)
{
    for (;;)
    {
        for (Source& source : _sources)
            advance(source, isFollowing);
        Source* const earliest = findEarliest();
        if (earliest == nullptr)
            break;
        wait(*earliest);
        handOver(window, take);
    }
    handOver(0, take);
}

} // namespace KrLog

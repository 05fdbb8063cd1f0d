#include <base/prQuery.h>

#include <base/assert.h>
#include <base/internal/errors/nearestNames.h>
#include <base/prCatalog.h>
#include <base/prEx.h>
#include <base/raise.h>

#include <algorithm>
#include <ostream>

namespace Kr
{

namespace
{

constexpr const char* processObject = "Process";
constexpr const char* processIdentity = "ID Process";

} // namespace

PrQuery::PrQuery()
    : _query(performOpen())
{
}

PrQuery::~PrQuery()
{
    _counters.clear();
    performClose(_query);
}

const PrCounter& PrQuery::add(const PrPath& path)
{
    if (!path.isPattern())
        PrCatalog::requireInstance(path);
    return addExpected(path);
}

const PrCounter& PrQuery::addExpected(const PrPath& path)
{
    if (path.isPattern())
        raise<PrEx::ExInvalidPath>(KR_HERE, path.toString().c_str(),
                                   "it is a pattern, which PrCatalog::expand resolves");
    std::unique_ptr<PrCounter> counter(new PrCounter(path, addKnown(path)));
    if (counter->isRate() && toSmallLetters(path.getObject()) == "process")
        counter->_identity =
            performAdd(_query, {processObject, path.getInstance(), processIdentity});
    _counters.push_back(std::move(counter));
    return *_counters.back();
}

/// A system that does not know the path may know it in another spelling.
void* PrQuery::addKnown(const PrPath& path)
{
    if (void* const handle = performAdd(_query, path))
        return handle;
    const Vector<PrPath> found = PrCatalog::expand(path);
    void* const handle = found.empty() ? nullptr : performAdd(_query, found.front());
    if (handle == nullptr)
        raise<PrEx::ExUnknownCounter>(KR_HERE, path.getObject().c_str(), path.getCounter().c_str(),
                                      "");
    return handle;
}

void PrQuery::remove(const PrCounter& counter)
{
    const auto found =
        std::find_if(_counters.begin(), _counters.end(),
                     [&counter](const auto& each) { return each.get() == &counter; });
    KR_ASSERT(found != _counters.end());
    _counters.erase(found);
}

void PrQuery::collect()
{
    if (_counters.empty())
        return;
    performCollect(_query);
    for (const auto& counter : _counters)
        counter->performUpdate();
}

Vector<const PrCounter*> PrQuery::getCounters() const
{
    Vector<const PrCounter*> counters;
    for (const auto& counter : _counters)
        counters.push_back(counter.get());
    return counters;
}

double PrQuery::read(const PrPath& path)
{
    PrQuery query;
    const PrCounter& counter = query.add(path);
    query.collect();
    return counter.getValue();
}

std::string PrQuery::findProcess(unsigned long id)
{
    PrQuery query;
    for (const PrPath& path : PrCatalog::expand({processObject, "*", processIdentity}))
        query.addExpected(path);
    query.collect();
    for (const auto& counter : query._counters)
        if (counter->getValue(-1.) == static_cast<double>(id) &&
            counter->getPath().getInstance() != "_Total")
            return counter->getPath().getInstance();
    return {};
}

std::ostream& operator<<(std::ostream& os, const PrQuery& query)
{
    for (const PrCounter* const counter : query.getCounters())
        os << *counter << '\n';
    return os;
}

} // namespace Kr

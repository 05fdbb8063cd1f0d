#include <base/prCatalog.h>

#include <base/internal/errors/nearestNames.h>
#include <base/internal/errors/wildcards.h>
#include <base/prEx.h>
#include <base/raise.h>

#include <algorithm>
#include <map>

namespace Kr
{

namespace
{

/// The names that fit the pattern, in any case of the letters.
Vector<std::string> select(const std::string& pattern, const Vector<std::string>& names)
{
    const std::string small = toSmallLetters(pattern);
    Vector<std::string> selected;
    for (const std::string& name : names)
        if (fitsWildcards(small, toSmallLetters(name)))
            selected.push_back(name);
    return selected;
}

bool isPattern(const std::string& text)
{
    return text.find('*') != text.npos;
}

/// Gives the second and further ones of a name their numbers.
void numberDuplicates(Vector<std::string>& names)
{
    std::map<std::string, int> counts;
    for (std::string& name : names)
        if (const int number = counts[toSmallLetters(name)]++; number != 0)
            name.append("#").append(std::to_string(number));
}

Vector<std::string> selectInstances(const PrPath& pattern, const Vector<std::string>& instances)
{
    const std::string& wanted = pattern.getInstance();
    if (wanted.empty() && instances.empty())
        return {""};
    Vector<std::string> selected = select(wanted, instances);
    if (selected.empty() && !isPattern(wanted))
        raise<PrEx::ExUnknownInstance>(KR_HERE, pattern.getObject().c_str(), wanted.c_str(),
                                       quoteNearest(wanted, instances).c_str());
    return selected;
}

} // namespace

Vector<std::string> PrCatalog::getObjects()
{
    Vector<std::string> objects = performListObjects();
    std::sort(objects.begin(), objects.end());
    return objects;
}

PrCatalog::Items PrCatalog::getItems(const std::string& object)
{
    Items items;
    if (!performListItems(object, items))
        raise<PrEx::ExUnknownObject>(KR_HERE, object.c_str(),
                                     quoteNearest(object, getObjects()).c_str());
    numberDuplicates(items.instances);
    return items;
}

Vector<std::string> PrCatalog::getCounters(const std::string& object)
{
    return getItems(object).counters;
}

Vector<std::string> PrCatalog::getInstances(const std::string& object)
{
    return getItems(object).instances;
}

void PrCatalog::requireInstance(const PrPath& path)
{
    selectInstances(path, getInstances(path.getObject()));
}

Vector<PrPath> PrCatalog::expand(const PrPath& pattern)
{
    const Items items = getItems(pattern.getObject());
    const Vector<std::string> objects = select(pattern.getObject(), performListObjects());
    const std::string& object = objects.empty() ? pattern.getObject() : objects.front();
    const Vector<std::string> counters = select(pattern.getCounter(), items.counters);
    if (counters.empty() && !isPattern(pattern.getCounter()))
        raise<PrEx::ExUnknownCounter>(KR_HERE, object.c_str(), pattern.getCounter().c_str(),
                                      quoteNearest(pattern.getCounter(), items.counters).c_str());
    Vector<PrPath> paths;
    for (const std::string& instance : selectInstances(pattern, items.instances))
        for (const std::string& counter : counters)
            paths.emplace_back(object, instance, counter);
    return paths;
}

} // namespace Kr

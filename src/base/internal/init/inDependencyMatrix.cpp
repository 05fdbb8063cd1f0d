#include <base/internal/init/inDependencyMatrix.h>

#include <bitset>

namespace Kr
{

InDependencyMatrix::InDependencyMatrix(std::size_t size)
    : _size(size)
    , _rowWords((size + wordBits - 1) / wordBits)
    , _words(size * _rowWords)
{
}

bool InDependencyMatrix::needs(std::size_t i, std::size_t j) const
{
    return (row(i)[j / wordBits] >> (j % wordBits) & 1U) != 0;
}

void InDependencyMatrix::set(std::size_t i, std::size_t j)
{
    row(i)[j / wordBits] |= Word(1) << (j % wordBits);
}

bool InDependencyMatrix::hasCycle() const
{
    for (std::size_t i = 0; i < _size; ++i)
        if (needs(i, i))
            return true;
    return false;
}

std::vector<std::int32_t> InDependencyMatrix::close()
{
    std::vector<std::int32_t> added(_size);
    std::vector<Indices> direct(_size);
    std::vector<Indices> dependants(_size);
    std::vector<std::size_t> waitingFor(_size);
    Indices order; // each index after everything that it needs (Kahn, 1962)
    order.reserve(_size);
    for (std::size_t i = 0; i < _size; ++i)
    {
        direct[i] = columns(i);
        added[i] = -countOthers(i);
        waitingFor[i] = direct[i].size();
        for (const std::size_t j : direct[i])
            dependants[j].push_back(i);
        if (direct[i].empty())
            order.push_back(i);
    }
    for (std::size_t next = 0; next < order.size(); ++next)
        for (const std::size_t i : dependants[order[next]])
        {
            merge(i, order[next]);
            if (--waitingFor[i] == 0)
                order.push_back(i);
        }
    if (order.size() != _size)
    {
        Indices looped;
        for (std::size_t i = 0; i < _size; ++i)
            if (waitingFor[i] != 0)
                looped.push_back(i);
        closeLoops(looped);
    }
    for (std::size_t i = 0; i < _size; ++i)
        added[i] += countOthers(i);
    return added;
}

void InDependencyMatrix::remove(std::size_t index)
{
    InDependencyMatrix smaller(_size - 1);
    for (std::size_t i = 0; i < _size; ++i)
        for (std::size_t j : columns(i))
            if (i != index && j != index)
                smaller.set(i - (i > index ? 1 : 0), j - (j > index ? 1 : 0));
    *this = smaller;
}

void InDependencyMatrix::merge(std::size_t into, std::size_t from)
{
    Word* target = row(into);
    const Word* source = row(from);
    for (std::size_t word = 0; word < _rowWords; ++word)
        target[word] |= source[word];
}

std::int32_t InDependencyMatrix::countOthers(std::size_t i) const
{
    std::size_t count = 0;
    for (std::size_t word = 0; word < _rowWords; ++word)
        count += std::bitset<wordBits>(row(i)[word]).count();
    return static_cast<std::int32_t>(count) - (needs(i, i) ? 1 : 0);
}

InDependencyMatrix::Indices InDependencyMatrix::columns(std::size_t i) const
{
    Indices set;
    for (std::size_t word = 0; word < _rowWords; ++word)
        for (Word rest = row(i)[word]; rest != 0; rest &= rest - 1)
        {
            const Word belowLowest = (rest & (~rest + 1)) - 1;
            set.push_back(word * wordBits + std::bitset<wordBits>(belowLowest).count());
        }
    return set;
}

/// The rows in or behind a cycle: what they need outside of these is merged already, so Warshall's
/// algorithm (1962) over them alone, a row at a time, closes the rest.
void InDependencyMatrix::closeLoops(const Indices& looped)
{
    for (const std::size_t through : looped)
        for (const std::size_t i : looped)
            if (i != through && needs(i, through))
                merge(i, through);
}

} // namespace Kr

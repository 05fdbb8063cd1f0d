#include <base/osProcessor.h>

#include <base/assert.h>
#include <base/internal/os/osProcessorQuery.h>

#include <algorithm>
#include <array>

namespace Kr
{

namespace
{

using Registers = OsProcessorQuery::Registers;

constexpr std::uint32_t firstExtended = 0x80000000;

/// Whether a leaf is among those that the processor answers.
bool isAnswered(OsProcessorQuery& query, std::uint32_t leaf)
{
    const std::uint32_t first = leaf & firstExtended;
    const std::uint32_t last = query.identify(first, 0)._eax;
    return last >= leaf && (last & firstExtended) == first;
}

Registers ask(OsProcessorQuery& query, std::uint32_t leaf, std::uint32_t subleaf = 0)
{
    return isAnswered(query, leaf) ? query.identify(leaf, subleaf) : Registers{};
}

/// Bits `first` to `last`.
std::uint32_t getBits(std::uint32_t word, int first, int last)
{
    return word >> first & ((std::uint32_t{1} << (last - first + 1)) - 1);
}

/// The characters of registers, the lowest byte first, up to a NUL.
template <std::size_t Count>
std::string getText(const std::array<std::uint32_t, Count>& words)
{
    std::string text;
    for (const std::uint32_t word : words)
        for (int byte = 0; byte < 4; ++byte)
            text += static_cast<char>(word >> 8 * byte & 0xFFU);
    text.resize(std::min(text.find('\0'), text.size()));
    return text;
}

std::string trim(const std::string& text)
{
    const std::size_t first = text.find_first_not_of(' ');
    return first == std::string::npos ? ""
                                      : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// Register states that the system must save before a feature may be used.
constexpr std::uint64_t anyState = 0;
constexpr std::uint64_t vectorState = 0x06;    // 128- and 256-bit registers
constexpr std::uint64_t vector512State = 0xE6; // and the masks and 512-bit registers

enum Word : std::int32_t // which word of the identification holds a feature's bit
{
    Leaf1Ecx,
    Leaf1Edx,
    Leaf7Ebx,
    Leaf7Ecx
};

struct FeatureBit
{
    const char* name;
    Word word;
    int bit;
    std::uint64_t states;
};

// In the order of the enumeration; the bits are those of the processors' manuals.
constexpr std::array<FeatureBit, OsProcessor::NbFeatures> featureBits = {{
    {"SSE", Leaf1Edx, 25, anyState},
    {"SSE2", Leaf1Edx, 26, anyState},
    {"SSE3", Leaf1Ecx, 0, anyState},
    {"SSSE3", Leaf1Ecx, 9, anyState},
    {"SSE4.1", Leaf1Ecx, 19, anyState},
    {"SSE4.2", Leaf1Ecx, 20, anyState},
    {"POPCNT", Leaf1Ecx, 23, anyState},
    {"AES", Leaf1Ecx, 25, anyState},
    {"F16C", Leaf1Ecx, 29, vectorState},
    {"FMA", Leaf1Ecx, 12, vectorState},
    {"AVX", Leaf1Ecx, 28, vectorState},
    {"AVX2", Leaf7Ebx, 5, vectorState},
    {"BMI1", Leaf7Ebx, 3, anyState},
    {"BMI2", Leaf7Ebx, 8, anyState},
    {"SHA", Leaf7Ebx, 29, anyState},
    {"AVX-512F", Leaf7Ebx, 16, vector512State},
    {"AVX-512DQ", Leaf7Ebx, 17, vector512State},
    {"AVX-512CD", Leaf7Ebx, 28, vector512State},
    {"AVX-512BW", Leaf7Ebx, 30, vector512State},
    {"AVX-512VL", Leaf7Ebx, 31, vector512State},
    {"AVX-512VNNI", Leaf7Ecx, 11, vector512State},
}};

/// The deterministic cache parameters stand in leaf 4, or in a leaf of the extensions alike.
std::uint32_t findCacheLeaf(OsProcessorQuery& query)
{
    for (const std::uint32_t leaf : {std::uint32_t{0x4}, std::uint32_t{0x8000001D}})
        if (getBits(ask(query, leaf)._eax, 0, 4) != 0)
            return leaf;
    return 0;
}

OsProcessor::Cache readCache(const Registers& answer)
{
    OsProcessor::Cache cache{};
    cache._kind = static_cast<OsProcessor::Cache::Kind>(getBits(answer._eax, 0, 4));
    cache._level = static_cast<int>(getBits(answer._eax, 5, 7));
    cache._maxSharing = static_cast<int>(getBits(answer._eax, 14, 25)) + 1;
    cache._lineSize = static_cast<int>(getBits(answer._ebx, 0, 11)) + 1;
    const int partitions = static_cast<int>(getBits(answer._ebx, 12, 21)) + 1;
    cache._ways = static_cast<int>(getBits(answer._ebx, 22, 31)) + 1;
    cache._nbSets = static_cast<int>(answer._ecx + 1);
    cache._size = static_cast<std::uint64_t>(cache._ways) * static_cast<std::uint64_t>(partitions) *
                  static_cast<std::uint64_t>(cache._lineSize) * (std::uint64_t{answer._ecx} + 1);
    return cache;
}

} // namespace

OsProcessor::OsProcessor(OsProcessorQuery& query)
    : _pageSize(query.getPageSize())
    , _largePageSize(query.getLargePageSize())
{
    readName(query);
    readFeatures(query);
    readCaches(query);
    readTopology(query);
}

void OsProcessor::readName(OsProcessorQuery& query)
{
    const Registers vendor = query.identify(0, 0);
    _vendor = getText<3>({vendor._ebx, vendor._edx, vendor._ecx});
    if (isAnswered(query, firstExtended + 4))
    {
        std::string brand;
        for (std::uint32_t leaf = firstExtended + 2; leaf <= firstExtended + 4; ++leaf)
        {
            const Registers part = query.identify(leaf, 0);
            brand += getText<4>({part._eax, part._ebx, part._ecx, part._edx});
        }
        _brand = trim(brand);
    }
    const std::uint32_t signature = ask(query, 1)._eax;
    _stepping = static_cast<int>(getBits(signature, 0, 3));
    _model = static_cast<int>(getBits(signature, 4, 7));
    _family = static_cast<int>(getBits(signature, 8, 11));
    if (_family == 6 || _family == 15)
        _model += static_cast<int>(getBits(signature, 16, 19)) << 4;
    if (_family == 15)
        _family += static_cast<int>(getBits(signature, 20, 27));
}

void OsProcessor::readFeatures(OsProcessorQuery& query)
{
    const Registers basic = ask(query, 1);
    const Registers structured = ask(query, 7);
    const std::array<std::uint32_t, 4> words = {basic._ecx, basic._edx, structured._ebx,
                                                structured._ecx};
    const bool tellsStates = getBits(basic._ecx, 27, 27) != 0;
    const std::uint64_t saved = tellsStates ? query.getSavedStates() : 0;
    for (std::size_t i = 0; i < featureBits.size(); ++i)
    {
        const FeatureBit& feature = featureBits[i];
        const bool isThere = (words[feature.word] >> feature.bit & 1U) != 0;
        if (isThere && (saved & feature.states) == feature.states)
            _features |= std::uint32_t{1} << i;
    }
}

void OsProcessor::readCaches(OsProcessorQuery& query)
{
    constexpr std::uint32_t most =
        16; // no processor has more; a broken answer must not go on for ever
    const std::uint32_t leaf = findCacheLeaf(query);
    for (std::uint32_t i = 0; leaf != 0 && i < most; ++i)
    {
        const Registers answer = query.identify(leaf, i);
        if (getBits(answer._eax, 0, 4) == 0)
            return;
        _caches.push_back(readCache(answer));
    }
}

void OsProcessor::readTopology(OsProcessorQuery& query)
{
    _nbThreads = query.getNbThreads();
    const int threadsOfACore = static_cast<int>(getBits(ask(query, 0xB)._ebx, 0, 15));
    if (threadsOfACore != 0)
        _nbCores = std::max(_nbThreads / threadsOfACore, _nbThreads != 0 ? 1 : 0);
}

const char* OsProcessor::getFeatureName(Feature feature)
{
    KR_ASSERT(feature >= 0 && feature < NbFeatures);
    return featureBits[static_cast<std::size_t>(feature)].name;
}

const OsProcessor::Cache* OsProcessor::findCache(int level, Cache::Kind kind) const
{
    const auto found = std::find_if(_caches.begin(), _caches.end(),
                                    [&](const Cache& cache)
                                    { return cache._level == level && cache._kind == kind; });
    return found == _caches.end() ? nullptr : &*found;
}

} // namespace Kr

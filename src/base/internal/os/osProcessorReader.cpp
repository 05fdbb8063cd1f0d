#include <base/internal/os/osProcessorReader.h>

#include <algorithm>

namespace Kr
{

namespace
{

constexpr std::uint32_t extended = 0x80000000;

/// The bits `first` to `first + count - 1`.
int getBits(std::uint32_t word, int first, int count)
{
    return static_cast<int>(word >> first & ((1U << count) - 1U));
}

void append(std::string& text, std::uint32_t word)
{
    for (int byte = 0; byte < 4; ++byte)
        text += static_cast<char>(word >> 8 * byte & 0xFFU);
}

/// Without what follows a null character, and without blanks around it.
std::string trim(std::string text)
{
    text.erase(std::min(text.find('\0'), text.size()));
    text.erase(0, std::min(text.find_first_not_of(' '), text.size()));
    return text.erase(text.find_last_not_of(' ') + 1);
}

/// Where a processor tells a feature, and the register sets that the system must save for it.
struct FeatureBit
{
    OsProcessor::Feature feature;
    const char* name;
    std::uint32_t leaf;
    std::uint32_t OsCpuRegisters::*word;
    int bit;
    std::uint64_t neededSets;
};

constexpr std::uint64_t ymm = 0x6;  ///< 128 and 256 bits
constexpr std::uint64_t zmm = 0xE6; ///< those, and 512 bits with their masks
constexpr auto ebx = &OsCpuRegisters::_ebx;
constexpr auto ecx = &OsCpuRegisters::_ecx;
constexpr auto edx = &OsCpuRegisters::_edx;

constexpr FeatureBit featureBits[] = {
    {OsProcessor::MMX, "MMX", 1, edx, 23, 0},
    {OsProcessor::SSE, "SSE", 1, edx, 25, 0},
    {OsProcessor::SSE2, "SSE2", 1, edx, 26, 0},
    {OsProcessor::SSE3, "SSE3", 1, ecx, 0, 0},
    {OsProcessor::SSSE3, "SSSE3", 1, ecx, 9, 0},
    {OsProcessor::SSE4_1, "SSE4.1", 1, ecx, 19, 0},
    {OsProcessor::SSE4_2, "SSE4.2", 1, ecx, 20, 0},
    {OsProcessor::POPCNT, "POPCNT", 1, ecx, 23, 0},
    {OsProcessor::AES, "AES", 1, ecx, 25, 0},
    {OsProcessor::PCLMULQDQ, "PCLMULQDQ", 1, ecx, 1, 0},
    {OsProcessor::F16C, "F16C", 1, ecx, 29, ymm},
    {OsProcessor::FMA, "FMA", 1, ecx, 12, ymm},
    {OsProcessor::AVX, "AVX", 1, ecx, 28, ymm},
    {OsProcessor::AVX2, "AVX2", 7, ebx, 5, ymm},
    {OsProcessor::BMI1, "BMI1", 7, ebx, 3, 0},
    {OsProcessor::BMI2, "BMI2", 7, ebx, 8, 0},
    {OsProcessor::AVX512F, "AVX512F", 7, ebx, 16, zmm},
    {OsProcessor::AVX512CD, "AVX512CD", 7, ebx, 28, zmm},
    {OsProcessor::AVX512DQ, "AVX512DQ", 7, ebx, 17, zmm},
    {OsProcessor::AVX512BW, "AVX512BW", 7, ebx, 30, zmm},
    {OsProcessor::AVX512VL, "AVX512VL", 7, ebx, 31, zmm},
};

/// One answer of a deterministic cache leaf. Every field is held as its value less one.
OsProcessor::Cache decodeCache(const OsCpuRegisters& answer)
{
    const int lineSize = getBits(answer._ebx, 0, 12) + 1;
    const int partitions = getBits(answer._ebx, 12, 10) + 1;
    const int ways = getBits(answer._ebx, 22, 10) + 1;
    const std::int64_t sets = std::int64_t{answer._ecx} + 1;
    const bool isFullyAssociative = getBits(answer._eax, 9, 1) != 0;
    OsProcessor::Cache cache{};
    cache.kind = static_cast<OsProcessor::CacheKind>(getBits(answer._eax, 0, 5));
    cache.level = getBits(answer._eax, 5, 3);
    cache.size = sets * ways * partitions * lineSize;
    cache.ways = isFullyAssociative ? static_cast<int>(cache.size / lineSize) : ways;
    cache.lineSize = lineSize;
    cache.sharingThreads = getBits(answer._eax, 14, 12) + 1;
    return cache;
}

} // namespace

// The public side

const OsProcessor::Cache* OsProcessor::findCache(int level) const
{
    const auto found = std::find_if(_caches.begin(), _caches.end(),
                                    [level](const Cache& cache)
                                    { return cache.level == level && cache.kind != Instructions; });
    return found != _caches.end() ? &*found : nullptr;
}

const char* OsProcessor::getName(Feature feature)
{
    for (const FeatureBit& bit : featureBits)
        if (bit.feature == feature)
            return bit.name;
    return "";
}

// Reading

OsProcessorReader::OsProcessorReader(const Query& query, std::uint64_t enabledSets)
    : _query(query)
    , _enabledSets(enabledSets)
    , _greatestLeaf(query(0, 0)._eax)
    , _greatestExtendedLeaf(_greatestLeaf != 0 ? query(extended, 0)._eax : 0)
{
}

OsProcessor OsProcessorReader::read(const Query& query, std::uint64_t enabledSets)
{
    const OsProcessorReader reader(query, enabledSets);
    OsProcessor processor;
    if (reader._greatestLeaf == 0)
        return processor;
    reader.readNames(processor);
    reader.readVersion(processor);
    reader.readFeatures(processor);
    reader.readCores(processor);
    reader.readCaches(processor);
    reader.readPageSizes(processor);
    return processor;
}

/// A processor without extended leaves answers the question for them with anything: the number of
/// a leaf says whether it is one.
bool OsProcessorReader::hasLeaf(std::uint32_t leaf) const
{
    return leaf < extended ? leaf <= _greatestLeaf : leaf <= _greatestExtendedLeaf;
}

OsCpuRegisters OsProcessorReader::ask(std::uint32_t leaf, std::uint32_t subleaf) const
{
    return hasLeaf(leaf) ? _query(leaf, subleaf) : OsCpuRegisters{0, 0, 0, 0};
}

void OsProcessorReader::readNames(OsProcessor& processor) const
{
    const OsCpuRegisters vendor = ask(0);
    for (const std::uint32_t word : {vendor._ebx, vendor._edx, vendor._ecx})
        append(processor._vendor, word);
    processor._vendor = trim(processor._vendor);
    if (!hasLeaf(extended + 4))
        return;
    for (std::uint32_t leaf = extended + 2; leaf <= extended + 4; ++leaf)
    {
        const OsCpuRegisters part = ask(leaf);
        for (const std::uint32_t word : {part._eax, part._ebx, part._ecx, part._edx})
            append(processor._brand, word);
    }
    processor._brand = trim(processor._brand);
}

void OsProcessorReader::readVersion(OsProcessor& processor) const
{
    const std::uint32_t signature = ask(1)._eax;
    const int family = getBits(signature, 8, 4);
    processor._family = family == 15 ? family + getBits(signature, 20, 8) : family;
    processor._model = getBits(signature, 4, 4);
    if (family == 6 || family == 15)
        processor._model += getBits(signature, 16, 4) << 4;
    processor._stepping = getBits(signature, 0, 4);
}

void OsProcessorReader::readFeatures(OsProcessor& processor) const
{
    for (const FeatureBit& bit : featureBits)
    {
        const OsCpuRegisters answer = ask(bit.leaf);
        if (getBits(answer.*bit.word, bit.bit, 1) != 0 &&
            (_enabledSets & bit.neededSets) == bit.neededSets)
            processor._features |= 1U << bit.feature;
    }
}

/// From the topology leaf, whose levels tell the threads that each holds; older processors have a
/// count of threads alone.
void OsProcessorReader::readCores(OsProcessor& processor) const
{
    constexpr std::uint32_t topologyLeaf = 0xB;
    constexpr int levelOfThreads = 1, levelOfCores = 2;
    int threadsPerCore = 0;
    for (std::uint32_t level = 0; level < 8; ++level)
    {
        const OsCpuRegisters answer = ask(topologyLeaf, level);
        const int kind = getBits(answer._ecx, 8, 8);
        const int threads = getBits(answer._ebx, 0, 16);
        if (kind == 0 || threads == 0)
            break;
        threadsPerCore = kind == levelOfThreads ? threads : threadsPerCore;
        processor._threadCount = kind == levelOfCores ? threads : processor._threadCount;
    }
    if (threadsPerCore != 0 && processor._threadCount != 0)
    {
        processor._coreCount = std::max(processor._threadCount / threadsPerCore, 1);
        return;
    }
    const OsCpuRegisters version = ask(1);
    const bool hasSeveral = getBits(version._edx, 28, 1) != 0;
    processor._threadCount = hasSeveral ? std::max(getBits(version._ebx, 16, 8), 1) : 1;
    processor._coreCount = hasSeveral ? 0 : 1; // of several threads it does not tell which share
}

void OsProcessorReader::readCaches(OsProcessor& processor) const
{
    constexpr std::uint32_t intelLeaf = 4, amdLeaf = extended + 0x1D;
    constexpr int hasTopologyExtensions = 22;
    const bool isAmd = getBits(ask(extended + 1)._ecx, hasTopologyExtensions, 1) != 0;
    const std::uint32_t leaf = isAmd && hasLeaf(amdLeaf) ? amdLeaf : intelLeaf;
    for (std::uint32_t index = 0; index < 16; ++index)
    {
        const OsCpuRegisters answer = ask(leaf, index);
        const int kind = getBits(answer._eax, 0, 5);
        if (kind < OsProcessor::Data || kind > OsProcessor::Unified)
            return;
        processor._caches.push_back(decodeCache(answer));
    }
}

void OsProcessorReader::readPageSizes(OsProcessor& processor) const
{
    constexpr std::int64_t KiB = 1024, MiB = 1024 * KiB;
    constexpr int largePages = 3, hugePages = 26, longMode = 29;
    const std::uint32_t extendedFeatures = ask(extended + 1)._edx;
    processor._pageSizes.push_back(4 * KiB);
    if (getBits(extendedFeatures, longMode, 1) != 0)
        processor._pageSizes.push_back(2 * MiB);
    else if (getBits(ask(1)._edx, largePages, 1) != 0)
        processor._pageSizes.push_back(4 * MiB);
    if (getBits(extendedFeatures, hugePages, 1) != 0)
        processor._pageSizes.push_back(1024 * MiB);
}

} // namespace Kr

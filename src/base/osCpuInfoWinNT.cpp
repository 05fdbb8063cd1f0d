#include <base/internal/os/osCpuInfoWinNT.h>

#include <base/exSysError.h>
#include <base/internal/errors/invariant.h>
#include <base/raise.h>
#include <platform/platform.h>

namespace Kr
{

namespace
{

class ThisProcessor : public OsCpuIdentification
{
public:
    OsCpuRegisters query(std::uint32_t leaf) override
    {
        const KrProcessorRegisters answer = krIdentifyProcessor(leaf);
        return {answer.eax, answer.ebx, answer.ecx, answer.edx};
    }
};

std::uint32_t getMaximumLeaf(OsCpuIdentification& processor)
{
    return processor.query(0)._eax;
}

bool isBitSet(std::uint32_t word, int bit)
{
    return (word >> bit & 1U) != 0;
}

/// Bits `first` to `first + 3`.
int getNibble(std::uint32_t word, int first)
{
    return static_cast<int>(word >> first & 0xFU);
}

/// Reads cache descriptors, one byte each, into the records.
class DescriptorDecoder
{
public:
    DescriptorDecoder(OsCpuInfo::CacheInfo* data, OsCpuInfo::CacheInfo* instruction,
                      OsCpuInfo::CacheInfo* unified, int* page)
        : _l1Data(data)
        , _l1Instruction(instruction)
        , _l2Unified(unified)
        , _pageSize(page)
    {
    }

    /// The bytes of one register from `firstByte` (0 is the lowest) to 3.
    void decodeRegister(std::uint32_t word, int firstByte)
    {
        for (int byte = firstByte; byte < 4; ++byte)
            decode(word >> 8 * byte & 0xFFU);
    }

private:
    void decode(std::uint32_t descriptor)
    {
        switch (descriptor)
        {
        case 0x03:
        case 0x04:
            return setPageSize(4096);
        case 0x06:
            return setL1Instruction({8192, 4, 32});
        case 0x08:
            return setL1Instruction({16384, 4, 32});
        case 0x0A:
            return setL1Data({8192, 2, 32});
        case 0x0C:
            return setL1Data({16384, 2, 32});
        case 0x40:
            return setL2Unified({0, 1, 0});
        case 0x41:
            return setL2Unified({131072, 4, 32});
        case 0x42:
            return setL2Unified({262144, 4, 32});
        case 0x43:
            return setL2Unified({524288, 4, 32});
        case 0x44:
            return setL2Unified({1048576, 4, 32});
        case 0x45:
            return setL2Unified({2097152, 4, 32});
        case 0x82:
            return setL2Unified({262144, 8, 32});
        default:
            return;
        }
    }

    void setPageSize(int size)
    {
        KR_INVARIANT_TEXT(*_pageSize == 0 || *_pageSize == 4096,
                          "*pageSize == 0 || *pageSize == 4096", __LINE__);
        *_pageSize = size;
    }

    void setL1Instruction(const OsCpuInfo::CacheInfo& info)
    {
        KR_INVARIANT_TEXT(_l1Instruction->_size == 0, "l1Instruction->_size == 0", __LINE__);
        *_l1Instruction = info;
    }

    void setL1Data(const OsCpuInfo::CacheInfo& info)
    {
        KR_INVARIANT_TEXT(_l1Data->_size == 0, "l1Data->_size == 0", __LINE__);
        *_l1Data = info;
    }

    void setL2Unified(const OsCpuInfo::CacheInfo& info)
    {
        KR_INVARIANT_TEXT(_l2Unified->_size == 0, "l2Unified->_size == 0", __LINE__);
        *_l2Unified = info;
    }

    OsCpuInfo::CacheInfo* const _l1Data;
    OsCpuInfo::CacheInfo* const _l1Instruction;
    OsCpuInfo::CacheInfo* const _l2Unified;
    int* const _pageSize;
};

} // namespace

// Reading a processor's answers

OsCpuIdentification::~OsCpuIdentification() = default;

void OsCpuInfoWinNT::getFeatures(OsCpuIdentification& processor, bool* hasMMX, bool* hasSSE)
{
    const std::uint32_t flags = getMaximumLeaf(processor) != 0 ? processor.query(1)._edx : 0;
    *hasMMX = isBitSet(flags, 23);
    *hasSSE = isBitSet(flags, 25);
}

void OsCpuInfoWinNT::getVersion(OsCpuIdentification& processor, int* family, int* model,
                                int* stepping)
{
    if (getMaximumLeaf(processor) == 0)
        return;
    const std::uint32_t signature = processor.query(1)._eax;
    if (family != nullptr)
        *family = getNibble(signature, 8);
    if (model != nullptr)
        *model = getNibble(signature, 4);
    if (stepping != nullptr)
        *stepping = getNibble(signature, 0);
}

void OsCpuInfoWinNT::getMemoryInfo(OsCpuIdentification& processor, OsCpuInfo::CacheInfo* l1Data,
                                   OsCpuInfo::CacheInfo* l1Instruction,
                                   OsCpuInfo::CacheInfo* l2Unified, int* pageSize)
{
    *l1Data = *l1Instruction = *l2Unified = {0, 1, 0};
    *pageSize = 0;
    if (getMaximumLeaf(processor) < 2)
        return;
    OsCpuRegisters answer = processor.query(2);
    if (isBitSet(answer._eax, 31))
        return;
    DescriptorDecoder decoder(l1Data, l1Instruction, l2Unified, pageSize);
    const std::uint32_t rounds = answer._eax & 0xFFU;
    decoder.decodeRegister(answer._eax, 1);
    decoder.decodeRegister(answer._ebx, 0);
    decoder.decodeRegister(answer._ecx, 0);
    decoder.decodeRegister(answer._edx, 0);
    for (std::uint32_t round = 1; round < rounds; ++round)
    {
        answer = processor.query(2);
        decoder.decodeRegister(answer._eax, 1);
        decoder.decodeRegister(answer._ebx, 0);
        decoder.decodeRegister(answer._ecx, 0);
        decoder.decodeRegister(answer._ecx, 0);
    }
}

// This machine

void OsCpuInfo::initialize()
{
    _type = IA32;
    ThisProcessor processor;
    OsCpuInfoWinNT::getFeatures(processor, &_hasMMX, &_hasSSE);
    LARGE_INTEGER frequency;
    if (QueryPerformanceFrequency(&frequency) == 0)
        raise<ExSysErrorANSI>(KR_HERE_AT(350));
    _hwCounterFrequency = static_cast<std::uint64_t>(frequency.QuadPart);
    KR_INVARIANT_TEXT(_hwCounterFrequency != 0, "_hwCounterFrequency != 0", 406);
}

void OsCpuInfo::getDetailedType(Type* type, int* family, int* model, int* stepping)
{
    if (type != nullptr)
        *type = _type;
    ThisProcessor processor;
    OsCpuInfoWinNT::getVersion(processor, family, model, stepping);
}

unsigned long long OsCpuInfo::getHwCounterValue()
{
    LARGE_INTEGER count;
    if (QueryPerformanceCounter(&count) == 0)
        raise<ExSysErrorANSI>(KR_HERE_AT(457));
    return static_cast<unsigned long long>(count.QuadPart);
}

void OsCpuInfo::getMemoryInfo(CacheInfo* l1Data, CacheInfo* l1Instruction, CacheInfo* l2Unified,
                              int* pageSize)
{
    ThisProcessor processor;
    OsCpuInfoWinNT::getMemoryInfo(processor, l1Data, l1Instruction, l2Unified, pageSize);
}

} // namespace Kr

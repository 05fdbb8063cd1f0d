#include <base/internal/os/osProcessorReader.h>
#include <platform/platform.h>

namespace Kr
{

const OsProcessor& OsProcessor::getInstance()
{
    const auto query = [](std::uint32_t leaf, std::uint32_t subleaf) -> OsCpuRegisters
    {
        const KrProcessorRegisters answer = krIdentifyProcessor(leaf, subleaf);
        return {answer.eax, answer.ebx, answer.ecx, answer.edx};
    };
    static const OsProcessor& instance = // lives as long as the process
        *new OsProcessor(OsProcessorReader::read(query, krGetEnabledRegisterSets()));
    return instance;
}

} // namespace Kr

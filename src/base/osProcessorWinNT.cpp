#include <base/internal/os/osProcessorQuery.h>
#include <base/osProcessor.h>
#include <platform/platform.h>

#include <thread>

namespace Kr
{

namespace
{

class ThisMachine : public OsProcessorQuery
{
public:
    Registers identify(std::uint32_t leaf, std::uint32_t subleaf) override
    {
        const KrProcessorRegisters answer = krIdentifyProcessor(leaf, subleaf);
        return {answer.eax, answer.ebx, answer.ecx, answer.edx};
    }

    std::uint64_t getSavedStates() override { return krSavedProcessorStates(); }

    int getNbThreads() override { return static_cast<int>(std::thread::hardware_concurrency()); }

    std::uint64_t getPageSize() override
    {
        SYSTEM_INFO info;
        GetSystemInfo(&info);
        return info.dwPageSize;
    }

    std::uint64_t getLargePageSize() override { return GetLargePageMinimum(); }
};

} // namespace

const OsProcessor& OsProcessor::getInstance()
{
    static const OsProcessor processor = []
    {
        ThisMachine machine;
        return OsProcessor(machine);
    }();
    return processor;
}

} // namespace Kr

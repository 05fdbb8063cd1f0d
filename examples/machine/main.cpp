// Prints what the library knows of the machine, and the counter that its time stamps come from.

#include <base/exBase.h>
#include <base/hwCounter.h>
#include <base/hwIntervalTimer.h>
#include <base/inInitGuard.h>
#include <base/osCpuInfo.h>
#include <base/osEndian.h>
#include <base/osMemoryArch.h>

#include <iomanip>
#include <iostream>
#include <sstream>
#include <string>

namespace
{

void printRow(const char* label, const std::string& text)
{
    std::cout << std::left << std::setw(18) << label << text << '\n';
}

std::string describeProcessor()
{
    int family = 0;
    int model = 0;
    int stepping = 0;
    Kr::OsCpuInfo::getDetailedType(nullptr, &family, &model, &stepping);
    std::ostringstream text;
    text << Kr::OsCpuInfo::getTypeName() << ", family " << family << ", model " << model
         << ", stepping " << stepping << (Kr::OsCpuInfo::hasMMX() ? ", MMX" : "")
         << (Kr::OsCpuInfo::hasSSE() ? ", SSE" : "");
    return text.str();
}

/// A size in bytes; the processor may not report it.
std::string describeSize(int bytes)
{
    if (bytes == 0)
        return "not reported";
    return bytes % 1024 == 0 ? std::to_string(bytes / 1024) + " KiB"
                             : std::to_string(bytes) + " bytes";
}

std::string describeCache(int size, int lineSize)
{
    std::string text = describeSize(size);
    if (lineSize != 0)
        text += ", lines of " + describeSize(lineSize);
    return text;
}

std::string describeStamps()
{
    constexpr int count = 1000000;
    Kr::HwIntervalTimer timer("stamps");
    timer.start();
    for (int i = 0; i < count; ++i)
        Kr::HwCounter::timeStamp();
    timer.stop();
    std::ostringstream text;
    text << Kr::HwCounter::getRateNumerator() << " ticks per second, " << std::fixed
         << std::setprecision(3) << Kr::HwCounter::resolution() * 1e9 << " ns each; a stamp takes "
         << std::setprecision(1) << timer.timeInterval() / count * 1e9 << " ns";
    return text.str();
}

void printMachine()
{
    const Kr::OsMemoryArch& memory = Kr::OsMemoryArch::getInstance();
    printRow("processor", describeProcessor());
    printRow("byte order", Kr::OsEndian::isBigEndian() ? "highest first" : "lowest first");
    printRow("level 1 data", describeCache(memory.getL1DataSize(), memory.getL1DataLineSize()));
    printRow("level 2", describeCache(memory.getL2Size(), memory.getL2LineSize()));
    printRow("page", describeSize(memory.getPageSize()));
    printRow("raw counter", std::to_string(Kr::OsCpuInfo::getHwCounterFrequency()) + " Hz");
    printRow("time stamps", describeStamps());
}

} // namespace

int main(int argc, char** argv)
{
    try
    {
        const char* const* arguments = argv;
        const Kr::InInitGuard guard(argc, arguments);
        printMachine();
        return 0;
    }
    catch (const Kr::ExBase& error)
    {
        std::cerr << error.getDetailedReason() << '\n';
        return 1;
    }
}

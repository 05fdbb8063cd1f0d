// Prints what the library knows of the machine, and the counter that its time stamps come from.

#include <base/exBase.h>
#include <base/hwCounter.h>
#include <base/hwIntervalTimer.h>
#include <base/inInitGuard.h>
#include <base/osCpuInfo.h>
#include <base/osEndian.h>
#include <base/osProcessor.h>

#include <iomanip>
#include <iostream>
#include <sstream>
#include <string>

namespace
{

void printRow(const char* label, const std::string& text)
{
    std::cout << std::left << std::setw(22) << label << text << '\n';
}

std::string describeVersion(const Kr::OsProcessor& processor)
{
    std::ostringstream text;
    text << processor.getVendor() << ", family " << processor.getFamily() << ", model "
         << processor.getModel() << ", stepping " << processor.getStepping();
    return text.str();
}

std::string describeFeatures(const Kr::OsProcessor& processor)
{
    std::string text;
    for (int i = Kr::OsProcessor::MMX; i <= Kr::OsProcessor::AVX512VL; ++i)
    {
        const auto feature = static_cast<Kr::OsProcessor::Feature>(i);
        if (processor.has(feature))
            text += std::string(text.empty() ? "" : " ") + Kr::OsProcessor::getName(feature);
    }
    return text;
}

std::string describeSize(std::int64_t bytes)
{
    constexpr std::int64_t MiB = 1024 * 1024;
    return bytes % MiB == 0 ? std::to_string(bytes / MiB) + " MiB"
                            : std::to_string(bytes / 1024) + " KiB";
}

std::string describeCache(const Kr::OsProcessor::Cache& cache)
{
    std::ostringstream text;
    text << describeSize(cache.size) << ", " << cache.ways << " ways, lines of " << cache.lineSize
         << " bytes, shared by " << cache.sharingThreads << " threads";
    return text.str();
}

std::string describePages(const Kr::OsProcessor& processor)
{
    std::string text;
    for (const std::int64_t size : processor.getPageSizes())
        text += (text.empty() ? "" : ", ") + describeSize(size);
    return text;
}

void printProcessor(const Kr::OsProcessor& processor)
{
    static const char* const kinds[] = {"", " data", " instructions", ""};
    printRow("processor", processor.getBrand());
    printRow("version", describeVersion(processor));
    printRow("features", describeFeatures(processor));
    printRow("cores, threads", std::to_string(processor.getCoreCount()) + ", " +
                                   std::to_string(processor.getThreadCount()));
    for (const Kr::OsProcessor::Cache& cache : processor.getCaches())
        printRow(("level " + std::to_string(cache.level) + kinds[cache.kind]).c_str(),
                 describeCache(cache));
    printRow("pages", describePages(processor));
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
    printProcessor(Kr::OsProcessor::getInstance());
    printRow("byte order", Kr::OsEndian::isBigEndian() ? "highest first" : "lowest first");
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

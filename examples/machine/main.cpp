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

using Kr::OsProcessor;

std::string describeProcessor(const OsProcessor& processor)
{
    std::ostringstream text;
    text << (processor.getBrand().empty() ? "not reported" : processor.getBrand()) << " ("
         << processor.getVendor() << " family " << processor.getFamily() << ", model "
         << processor.getModel() << ", stepping " << processor.getStepping() << ')';
    return text.str();
}

std::string describeFeatures(const OsProcessor& processor)
{
    std::string text;
    for (int i = 0; i < OsProcessor::NbFeatures; ++i)
        if (const auto feature = static_cast<OsProcessor::Feature>(i); processor.has(feature))
            text += std::string(text.empty() ? "" : " ") + OsProcessor::getFeatureName(feature);
    return text;
}

/// A size in bytes; 0 is not reported.
std::string describeSize(std::uint64_t bytes)
{
    constexpr std::uint64_t kibi = 1024;
    if (bytes == 0)
        return "not reported";
    if (bytes % (kibi * kibi) == 0)
        return std::to_string(bytes / (kibi * kibi)) + " MiB";
    return bytes % kibi == 0 ? std::to_string(bytes / kibi) + " KiB"
                             : std::to_string(bytes) + " bytes";
}

std::string describeCache(const OsProcessor::Cache& cache)
{
    return describeSize(cache._size) + ", " + std::to_string(cache._ways) + " ways, lines of " +
           std::to_string(cache._lineSize) + " bytes, shared by at most " +
           std::to_string(cache._maxSharing) + " threads";
}

void printCaches(const OsProcessor& processor)
{
    constexpr const char* kinds[] = {"", " data", " instruction", ""};
    for (const OsProcessor::Cache& cache : processor.getCaches())
        printRow(("level " + std::to_string(cache._level) + kinds[cache._kind]).c_str(),
                 describeCache(cache));
    if (processor.getCaches().empty())
        printRow("caches", "not reported");
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
    const OsProcessor& processor = OsProcessor::getInstance();
    printRow("processor", describeProcessor(processor));
    printRow("features", describeFeatures(processor));
    printRow("cores, threads", std::to_string(processor.getNbCores()) + ", " +
                                   std::to_string(processor.getNbThreads()));
    printCaches(processor);
    printRow("pages", describeSize(processor.getPageSize()) + ", large ones " +
                          describeSize(processor.getLargePageSize()));
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

#include <base/hmHeapMgr.h>

#include <base/inSingleton.imp>

#include <cstdlib>
#include <cstring>
#include <ostream>
#include <utility>

template class Kr::InSingleton<Kr::HmHeapMgr>;

namespace Kr
{

namespace
{

bool readFlag(const char* name)
{
    const char* const value = std::getenv(name);
    return value != nullptr && std::atoi(value) > 0; // NOLINT(cert-err34-c): rubbish counts as 0
}

void readNumber(const char* name, std::uint32_t& number)
{
    if (const char* const value = std::getenv(name))
        number = static_cast<std::uint32_t>(std::atol(value)); // NOLINT(cert-err34-c): as above
}

} // namespace

HmHeapMgr& HmHeapMgr::getInstance()
{
    return *InSingleton<HmHeapMgr>::getInstance();
}

HmHeapMgr::HmHeapMgr()
{
    readSafetyLevel();
    _outputPrompt = readFlag("KR_HEAP_OUTPUT_PROMPT");
    _continueOnError = readFlag("KR_HEAP_CONTINUE_ON_UNRECOVERABLE_ERROR");
    _useDefaultHandler = readFlag("KR_HEAP_USE_DEFAULT_ERROR_HANDLER");
    _dumpHeapInfo = readFlag("KR_HEAP_DUMP_INFO");
    _checkAllMemory = readFlag("KR_HEAP_CHECK_MEMORY");
    _dumpLeaks = readFlag("KR_HEAP_DUMP_LEAKS");
    // On at first and replaced whatever the environment says: without the variable it is off, as it
    // has always been.
    _doDeferFreeing = readFlag("KR_HEAP_DO_DEFER_FREEING");
    readNumber("KR_HEAP_DEFER_QUEUE_LEN", _deferQueueLen);
    readNumber("KR_HEAP_DEFER_SIZE_THRESHOLD", _deferSizeThreshold);
    readNumber("KR_HEAP_CHECK_FREQUENCY", _checkFrequency);
}

HmHeapMgr::~HmHeapMgr() = default;

void HmHeapMgr::readSafetyLevel()
{
    const char* const value = std::getenv("KR_HEAP_SAFETY_LEVEL");
    if (value == nullptr)
        return;
    static constexpr const char* names[] = {"some", "full", "debug"};
    for (const SafetyLevel level : {some, full, debug})
        if (std::strcmp(value, names[level]) == 0)
            HmHeapMgr::setSafetyLevel(level);
}

void HmHeapMgr::initMultiThread()
{
}

void HmHeapMgr::protectPtr(void*, PtrProtect)
{
}

bool HmHeapMgr::isValid(void*, unsigned long, PtrType)
{
    return true;
}

void HmHeapMgr::checkHeap() const
{
}

unsigned int HmHeapMgr::setCheckPoint(unsigned int)
{
    return 0;
}

void HmHeapMgr::reportLeakage(unsigned int, unsigned int) const
{
}

void HmHeapMgr::breakpoint()
{
}

void HmHeapMgr::dump(std::ostream& os) const
{
    os << "*************** Default (compiler's) heap manager ***************" << std::endl;
    os << "*****************************************************************" << std::endl;
}

void HmHeapMgr::dumpPtrInfo(void*, std::ostream& os) const
{
    os << "Ptr info not available with compiler's heap" << std::endl;
}

void HmHeapMgr::dumpMallocStats(std::ostream& os) const
{
    os << "Malloc stats not available with compiler's heap" << std::endl;
}

HmHeapMgr::SafetyLevel HmHeapMgr::setSafetyLevel(SafetyLevel level)
{
    return std::exchange(_safetyLevel, level);
}

bool HmHeapMgr::setContinueOnError(bool on)
{
    return std::exchange(_continueOnError, on);
}

bool HmHeapMgr::setUseDefaultHandler(bool on)
{
    return std::exchange(_useDefaultHandler, on);
}

bool HmHeapMgr::setDumpHeapInfo(bool on)
{
    return std::exchange(_dumpHeapInfo, on);
}

bool HmHeapMgr::setCheckAllMemory(bool on)
{
    return std::exchange(_checkAllMemory, on);
}

bool HmHeapMgr::setDumpLeaks(bool on)
{
    return std::exchange(_dumpLeaks, on);
}

void HmHeapMgr::freeDeferred() const
{
}

bool HmHeapMgr::setDoDeferFreeing(bool on)
{
    return std::exchange(_doDeferFreeing, on);
}

unsigned long HmHeapMgr::setDeferQueueLen(unsigned long blocks)
{
    return std::exchange(_deferQueueLen, static_cast<std::uint32_t>(blocks));
}

unsigned long HmHeapMgr::setDeferSizeThreshold(unsigned long bytes)
{
    return std::exchange(_deferSizeThreshold, static_cast<std::uint32_t>(bytes));
}

unsigned int HmHeapMgr::setCheckFrequency(unsigned int allocations)
{
    return std::exchange(_checkFrequency, allocations);
}

std::ostream& operator<<(std::ostream& os, const HmHeapMgr& heap)
{
    heap.dump(os);
    return os;
}

} // namespace Kr

// The heap manager over the compiler's own heap, and the filter of known leaks.

#include <base/hmGC.h>
#include <base/hmGCEx.h>
#include <base/hmHeapMgr.h>
#include <base/hmLedger.h>
#include <base/inSingletonEx.h>
#include <base/osEnv.h>

#include "raised.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace
{

/// A manager that is built with the variables set.
class HeapWith : public Kr::HmHeapMgr
{
public:
    static std::string describe(const char* assignment)
    {
        const std::string text = assignment;
        Kr::OsEnv::putVariable(assignment);
        const Kr::HmHeapMgr heap;
        Kr::OsEnv::putVariable(text.substr(0, text.find('=') + 1).c_str());
        std::ostringstream os;
        os << heap.getSafetyLevel() << ' ' << heap.getOutputPrompt() << heap.getContinueOnError()
           << heap.getUseDefaultHandler() << heap.getDumpHeapInfo() << heap.getCheckAllMemory()
           << heap.getDumpLeaks() << heap.getDoDeferFreeing() << ' ' << heap.getDeferQueueLen()
           << ' ' << heap.getDeferSizeThreshold() << ' ' << heap.getCheckFrequency();
        return os.str();
    }
};

TEST(HeapManager, ReadsTheEnvironment)
{
    const struct
    {
        const char* variable;
        const char* settings;
    } cases[] = {
        {"KR_HEAP_NOTHING=1", "1 0000000 1000 4096 1000"},
        {"KR_HEAP_SAFETY_LEVEL=some", "0 0000000 1000 4096 1000"},
        {"KR_HEAP_SAFETY_LEVEL=debug", "2 0000000 1000 4096 1000"},
        {"KR_HEAP_SAFETY_LEVEL=Full", "1 0000000 1000 4096 1000"},
        {"KR_HEAP_SAFETY_LEVEL=debug ", "1 0000000 1000 4096 1000"},
        {"KR_HEAP_OUTPUT_PROMPT=1", "1 1000000 1000 4096 1000"},
        {"KR_HEAP_CONTINUE_ON_UNRECOVERABLE_ERROR=1", "1 0100000 1000 4096 1000"},
        {"KR_HEAP_USE_DEFAULT_ERROR_HANDLER=1", "1 0010000 1000 4096 1000"},
        {"KR_HEAP_DUMP_INFO=1", "1 0001000 1000 4096 1000"},
        {"KR_HEAP_CHECK_MEMORY=1", "1 0000100 1000 4096 1000"},
        {"KR_HEAP_DUMP_LEAKS=2", "1 0000010 1000 4096 1000"},
        {"KR_HEAP_DUMP_LEAKS=0", "1 0000000 1000 4096 1000"},
        {"KR_HEAP_DUMP_LEAKS=-1", "1 0000000 1000 4096 1000"},
        {"KR_HEAP_DUMP_LEAKS=yes", "1 0000000 1000 4096 1000"},
        {"KR_HEAP_DO_DEFER_FREEING=1", "1 0000001 1000 4096 1000"},
        {"KR_HEAP_DEFER_QUEUE_LEN=abc", "1 0000000 0 4096 1000"},
        {"KR_HEAP_DEFER_SIZE_THRESHOLD=12x", "1 0000000 1000 12 1000"},
        {"KR_HEAP_CHECK_FREQUENCY=-1", "1 0000000 1000 4096 4294967295"},
    };
    for (const auto& entry : cases)
        EXPECT_EQ(HeapWith::describe(entry.variable), entry.settings) << entry.variable;
}

TEST(HeapManager, SettersReturnThePreviousValue)
{
    Kr::HmHeapMgr heap;
    EXPECT_EQ(heap.setSafetyLevel(Kr::HmHeapMgr::debug), Kr::HmHeapMgr::full);
    EXPECT_EQ(heap.setSafetyLevel(Kr::HmHeapMgr::some), Kr::HmHeapMgr::debug);
    for (const auto set : {&Kr::HmHeapMgr::setContinueOnError, &Kr::HmHeapMgr::setUseDefaultHandler,
                           &Kr::HmHeapMgr::setDumpHeapInfo, &Kr::HmHeapMgr::setCheckAllMemory,
                           &Kr::HmHeapMgr::setDumpLeaks, &Kr::HmHeapMgr::setDoDeferFreeing})
    {
        EXPECT_FALSE((heap.*set)(true));
        EXPECT_TRUE((heap.*set)(true));
    }
    EXPECT_EQ(heap.setDeferQueueLen(7), 1000U);
    EXPECT_EQ(heap.setDeferSizeThreshold(8), 4096U);
    EXPECT_EQ(heap.setCheckFrequency(9), 1000U);
    EXPECT_EQ(heap.getDeferQueueLen() * 100 + heap.getDeferSizeThreshold() * 10 +
                  heap.getCheckFrequency(),
              789U);
}

TEST(HeapManager, AcceptsEverythingAndReportsNothing)
{
    Kr::HmHeapMgr heap;
    int onTheStack = 0;
    EXPECT_TRUE(heap.isValid(&onTheStack, 1000, Kr::HmHeapMgr::heapPtr));
    EXPECT_TRUE(heap.isValid(nullptr, 0, Kr::HmHeapMgr::anyPtr));
    EXPECT_EQ(heap.setCheckPoint(17), 0U);
    std::ostringstream os;
    os << heap;
    heap.dumpPtrInfo(&onTheStack, os);
    heap.dumpMallocStats(os);
    EXPECT_EQ(os.str(), "*************** Default (compiler's) heap manager ***************\n"
                        "*****************************************************************\n"
                        "Ptr info not available with compiler's heap\n"
                        "Malloc stats not available with compiler's heap\n");
    EXPECT_FALSE(Kr::HmLedger::isActive());
    EXPECT_TRUE(Kr::HmLedger::getAccounts().empty());
}

TEST(HeapManager, IsNotThereBeforeItsPackage)
{
    reasonOf<Kr::InSingletonEx::ExNotInitialized>([] { Kr::HmHeapMgr::getInstance(); },
                                                  "src/base/inSingleton.imp", 106);
}

TEST(LeakCollector, FiltersKnownLeaks)
{
    const struct
    {
        const char* frames[4];
        const char* text;
        bool isValid;
    } cases[] = {
        {{"a", "bc"}, "KNOWNLEAK a bcd ENDL", false},
        {{"a", "b"}, "KNOWNLEAK a x ENDL KNOWNLEAK a b ENDL", false},
        {{"a", "c"}, "KNOWNLEAK a x ENDL KNOWNLEAK a b ENDL", true},
        {{"a", "b", "c"}, "KNOWNLEAK a b ENDL", false}, // the frames may go on
        {{"a"}, "KNOWNLEAK a b ENDL", true},            // the words may not
        {{"ab"}, "KNOWNLEAK a ENDL", true},             // the word begins with the frame, not so
        {{"a"}, "", true},
        {{"a"}, "known leaks: none", true},
        {{"a"}, "KNOWNLEAK", true},
        {{"a"}, "KNOWNLEAK a", true},
        {{"a"}, "KNOWNLEAK x ENDL\nKNOWNLEAK a ENDL", false},
        {{"a"}, "KNOWNLEAK KNOWNLEAK a ENDL", false},
    };
    for (const auto& entry : cases)
    {
        EXPECT_EQ(Kr::HmGC::isLeakValid(entry.frames, entry.text), entry.isValid) << entry.text;
    }
}

/// It lives in static storage, so that a `delete` that freed it would not survive.
TEST(LeakCollector, DoesNothingAndIsNotFreed)
{
    alignas(Kr::HmGC) static unsigned char storage[sizeof(Kr::HmGC)];
    Kr::HmGC* volatile collector = new (storage) Kr::HmGC;
    std::ostringstream os;
    EXPECT_EQ(collector->setOutput(&os), nullptr);
    EXPECT_EQ(collector->setOutput(&os), &os);
    EXPECT_FALSE(collector->setThrowException(true));
    EXPECT_TRUE(collector->setThrowException(true));
    EXPECT_FALSE(collector->setStackDump(true));
    int block = 0;
    collector->validateAndPrint(&block);
    EXPECT_EQ(os.str(), "");
    EXPECT_FALSE(Kr::HmGC::isMemDebugLoaded());
    delete collector;

    const Kr::HmGCEx::ExGarbageDetected error("scene.cpp", 7);
    const std::unique_ptr<Kr::ExBase> copy(error.clone());
    EXPECT_STREQ(copy->getReason(), "Garbage Collector has detected leaks.");
    EXPECT_STREQ(error.what(), copy->getReason());
}

} // namespace

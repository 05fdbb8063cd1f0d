// What is made of the answers of a Windows that speaks another language, whose lists grow while
// they are read, and whose counters fail: a library of the tests' own stands for the system's.

#include "raised.h"
#include "scratchKey.h"

#include <base/prCatalog.h>
#include <base/prEx.h>
#include <base/prQuery.h>

#include <gmock/gmock.h>

#include <windows.h>

#include <pdhmsg.h>

namespace
{

using Kr::PrCatalog;
using Kr::PrCounter;
using Kr::PrEx;
using Kr::PrQuery;
using testing::ElementsAre;
using testing::HasSubstr;

/// Loads the library, and has the machine's part of the registry say what the English names are.
class ForeignSystem : public testing::Test
{
protected:
    ForeignSystem()
    {
        EXPECT_NE(library, nullptr);
        Kr::OsRegistryKey key = scratch.open();
        Kr::OsRegistryKey perflib(key,
                                  "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Perflib\\009",
                                  Kr::OsRegistryKey::Mode::Create);
        perflib.setTextList("Counter", {"1", "1847", "4", "Memory", "7", "Size", "24",
                                        "Available Bytes", "230", "Process", "784", "ID Process"});
        HKEY machine = nullptr;
        RegOpenKeyExA(HKEY_CURRENT_USER, scratch.getPath(), 0, KEY_READ, &machine);
        EXPECT_EQ(RegOverridePredefKey(HKEY_LOCAL_MACHINE, machine), ERROR_SUCCESS);
        RegCloseKey(machine);
    }
    ~ForeignSystem() override { RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr); }

    static int getOpenHandles()
    {
        return reinterpret_cast<int (*)()>(
            reinterpret_cast<void*>(GetProcAddress(library, "getOpenHandles")))();
    }

    /// Before the library under test asks for the system's.
    static inline const HMODULE library = LoadLibraryA("fake\\pdh.dll");
    const ScratchKey scratch;
};

TEST_F(ForeignSystem, IsListedInEnglish)
{
    EXPECT_THAT(PrCatalog::getObjects(),
                ElementsAre("Eigene Anwendung", "Endlos", "Kaputt", "Memory", "Process"));
    EXPECT_THAT(PrCatalog::getCounters("memory"), ElementsAre("Available Bytes", "Size"));
    EXPECT_THAT(PrCatalog::getInstances("Memory"), ElementsAre());
    EXPECT_THAT(PrCatalog::getCounters("Process"), ElementsAre("ID Process", "Eigenes"));
    EXPECT_THAT(PrCatalog::getInstances("Process"), ElementsAre("viewer", "viewer#1", "_Total"));
    EXPECT_THAT(PrCatalog::getCounters("Eigene Anwendung"), ElementsAre("Dreiecke/s"));
    EXPECT_THAT(PrCatalog::expand(R"(\process(v*)\id*)"),
                ElementsAre(R"(\Process(viewer)\ID Process)", R"(\Process(viewer#1)\ID Process)"));
}

TEST_F(ForeignSystem, SaysWhatIsWrong)
{
    EXPECT_THAT(reasonOf<PrEx::ExUnknownObject>([] { PrCatalog::getCounters("Memry"); }),
                HasSubstr("'Memry'; nearest: 'Memory'"));
    const auto statusOf = [](const char* object)
    {
        try
        {
            PrCatalog::getCounters(object);
        }
        catch (const PrEx::ExSystem& error)
        {
            return error.getStatus();
        }
        return 0UL;
    };
    EXPECT_EQ(statusOf("Kaputt"), static_cast<unsigned long>(PDH_CSTATUS_NO_MACHINE));
    EXPECT_EQ(statusOf("Endlos"), static_cast<unsigned long>(PDH_MORE_DATA));
    PrQuery query;
    EXPECT_THAT(reasonOf<PrEx::ExUnknownCounter>([&] { query.add(R"(\Memory\Avail Bytes)"); }),
                HasSubstr("'Avail Bytes'; nearest: 'Available Bytes'"));
    EXPECT_THAT(reasonOf<PrEx::ExUnknownInstance>([&] { query.add(R"(\Process(v)\ID Process)"); }),
                HasSubstr("no instance 'v'; nearest: "));
    EXPECT_EQ(getOpenHandles(), 1);
}

TEST_F(ForeignSystem, HasValuesOrReasons)
{
    {
        PrQuery query;
        const PrCounter& memory = query.add(R"(\Memory\Available Bytes)");
        const PrCounter& load = query.addExpected(R"(\Process(viewer)\% Processor Time)");
        const PrCounter& second = query.addExpected(R"(\Process(viewer#1)\Working Set)");
        EXPECT_FALSE(memory.isRate());
        EXPECT_TRUE(load.isRate());
        EXPECT_EQ(getOpenHandles(), 5); // the query, and the process's number for its load
        const struct
        {
            double memory;
            PrCounter::Status load;
            PrCounter::Status second;
        } expected[] = {
            {1e10, PrCounter::FirstOfTwo, PrCounter::NoInstance},
            {2e10, PrCounter::FirstOfTwo, PrCounter::Available},
            {0.5, PrCounter::Available, PrCounter::Failed},
        };
        for (const auto& row : expected)
        {
            query.collect();
            EXPECT_EQ(memory.getValue(), row.memory);
            EXPECT_EQ(load.getStatus(), row.load);
            EXPECT_EQ(second.getStatus(), row.second);
        }
        EXPECT_EQ(load.getValue(), 250.);
        EXPECT_THAT(second.getProblem(), HasSubstr("(status 0xc0000bdb)"));
        EXPECT_THAT(reasonOf<PrEx::ExSystem>([&] { query.collect(); }),
                    HasSubstr("cannot be read: "));
        EXPECT_EQ(memory.getValue(), 0.5);
    }
    EXPECT_EQ(getOpenHandles(), 0);
}

} // namespace

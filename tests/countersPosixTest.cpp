// The counters that the POSIX half of the platform answers, held against what the process knows of
// itself.

#include "raised.h"

#include <base/prCatalog.h>
#include <base/prEx.h>
#include <base/prQuery.h>

#include <platform/performance.h>
#include <platform/posix/performanceTables.h>

#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <thread>
#include <vector>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

namespace
{

using Kr::PrCounter;
using Kr::PrQuery;

double now(clockid_t clock)
{
    timespec time{};
    ::clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/// Between two moments of wall clock and processor time that enclose a collection.
struct Enclosed
{
    explicit Enclosed(PrQuery& query)
        : wallBefore(now(CLOCK_MONOTONIC))
        , usedBefore(now(CLOCK_PROCESS_CPUTIME_ID))
    {
        query.collect();
        usedAfter = now(CLOCK_PROCESS_CPUTIME_ID);
        wallAfter = now(CLOCK_MONOTONIC);
    }

    double wallBefore;
    double usedBefore;
    double usedAfter = 0.;
    double wallAfter = 0.;
};

std::string ownInstance()
{
    return PrQuery::findProcess(static_cast<unsigned long>(::getpid()));
}

TEST(CountersOnPosix, TimeOfThisProcess)
{
    PrQuery query;
    const PrCounter& load = query.add({"Process", ownInstance(), "% Processor Time"});
    const Enclosed first(query);
    EXPECT_EQ(load.getStatus(), PrCounter::FirstOfTwo);
    while (now(CLOCK_PROCESS_CPUTIME_ID) - first.usedAfter < 0.05)
        continue;
    const Enclosed second(query);
    const double seconds = load.getValue() / 100.;
    EXPECT_GE(seconds * (second.wallAfter - first.wallBefore), second.usedBefore - first.usedAfter);
    EXPECT_LE(seconds * (second.wallBefore - first.wallAfter), second.usedAfter - first.usedBefore);
}

TEST(CountersOnPosix, MemoryOfThisProcess)
{
    constexpr std::size_t size = 64 << 20;
    PrQuery query;
    const PrCounter& resident = query.add({"Process", ownInstance(), "Working Set"});
    const PrCounter& id = query.add({"process", ownInstance(), "id process"});
    query.collect();
    const double before = resident.getValue();
    const std::vector<char> block(size, 'x');
    query.collect();
    EXPECT_EQ(id.getValue(), ::getpid());
    EXPECT_GE(resident.getValue() - before, 0.9 * static_cast<double>(size));
    EXPECT_EQ(block[size / 2], 'x');
    EXPECT_EQ(PrQuery::findProcess(0x7FFFFFFF), "");
}

TEST(CountersOnPosix, SharesOfTheProcessorsAddUp)
{
    PrQuery query;
    const PrCounter& busy = query.add(R"(\Processor(_Total)\% Processor Time)");
    const PrCounter& idle = query.add(R"(\Processor(_Total)\% Idle Time)");
    const PrCounter& bytes = query.add(R"(\Memory\Available Bytes)");
    const PrCounter& kilobytes = query.add(R"(\Memory\Available KBytes)");
    query.collect();
    do // until the kernel's clock has ticked
        query.collect();
    while (!busy.isAvailable() || !idle.isAvailable());
    EXPECT_NEAR(busy.getValue() + idle.getValue(), 100., 1e-9);
    EXPECT_EQ(bytes.getValue(), 1024. * kilobytes.getValue());
}

/// A process of that name, until the end of the object's life.
class Child
{
public:
    explicit Child(const std::string& name)
    {
        int ends[2];
        EXPECT_EQ(::pipe(ends), 0);
        _id = ::fork();
        if (_id == 0)
        {
            ::prctl(PR_SET_NAME, name.c_str());
            ::close(ends[0]);
            ::close(ends[1]); // the parent has waited for this
            for (;;)
                ::pause();
        }
        ::close(ends[1]);
        char none = 0;
        EXPECT_EQ(::read(ends[0], &none, 1), 0);
        ::close(ends[0]);
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child()
    {
        ::kill(_id, SIGKILL);
        ::waitpid(_id, nullptr, 0);
    }

private:
    pid_t _id = -1;
};

TEST(CountersOnPosix, ProcessesComeAndGo)
{
    const std::string name = "k ()/" + std::to_string(::getpid());
    const std::string instance = "k []_" + std::to_string(::getpid());
    PrQuery query;
    const PrCounter& load = query.addExpected({"Process", instance, "% Processor Time"});
    const PrCounter& threads = query.addExpected({"Process", instance, "Thread Count"});
    const PrCounter& second = query.addExpected({"Process", instance + "#1", "Thread Count"});
    const auto expect = [&](PrCounter::Status expectedLoad, PrCounter::Status expectedThreads)
    {
        query.collect();
        EXPECT_EQ(load.getStatus(), expectedLoad);
        EXPECT_EQ(threads.getStatus(), expectedThreads);
        EXPECT_EQ(second.getStatus(), PrCounter::NoInstance);
    };
    expect(PrCounter::NoInstance, PrCounter::NoInstance);
    auto child = std::make_unique<Child>(name);
    expect(PrCounter::FirstOfTwo, PrCounter::Available);
    expect(PrCounter::Available, PrCounter::Available);
    EXPECT_EQ(threads.getValue(), 1.);
    child.reset();
    child = std::make_unique<Child>(name); // another of the name: no value of both
    expect(PrCounter::FirstOfTwo, PrCounter::Available);
    expect(PrCounter::Available, PrCounter::Available);
    {
        const Child other(name);
        query.collect();
        EXPECT_TRUE(load.isAvailable());
        EXPECT_TRUE(second.isAvailable());
        EXPECT_EQ(
            Kr::PrCatalog::expand({"Process", "k*" + instance.substr(2) + "#*", "Thread Count"})
                .size(),
            1U);
    }
    child.reset();
    expect(PrCounter::NoInstance, PrCounter::NoInstance);
    EXPECT_EQ(load.getProblem(), "there is no such instance now");
}

TEST(CountersOnPosix, EveryHandleIsClosed)
{
    const auto count = []
    {
        DWORD handles = 0;
        GetProcessHandleCount(GetCurrentProcess(), &handles);
        return handles;
    };
    const DWORD before = count();
    {
        PrQuery query;
        query.remove(query.add(R"(\Process(_Total)\% Processor Time)"));
        EXPECT_EQ(count(), before + 1);
        EXPECT_THROW(query.add(R"(\Process(_Total)\Nothing)"), Kr::PrEx::ExUnknownCounter);
        query.add(R"(\Processor(0)\% User Time)");
    }
    EXPECT_EQ(count(), before);
    PDH_FMT_COUNTERVALUE value{};
    EXPECT_EQ(
        static_cast<DWORD>(PdhGetFormattedCounterValue(nullptr, PDH_FMT_DOUBLE, nullptr, &value)),
        PDH_INVALID_HANDLE);
}

// The tables

constexpr const char* goodStat =
    "cpu  10 1 20 300 5 2 3 4 0 0\ncpu0 10 1 20 300 5 2 3 4 0 0\nintr 7 0\nctxt 99\n";
constexpr const char* goodProcess = "7 (a) b) (c) S 1 7 7 0 -1 0 100 0 20 0 30 40 0 0 20 0 3 0 "
                                    "500 4096 6 18446744073709551615 0\n";

/// A folder with tables, as the kernel would show them.
class TableFolder : public testing::Test
{
protected:
    TableFolder() { std::filesystem::create_directories(path / "7"); }
    ~TableFolder() override { std::filesystem::remove_all(path); }

    void write(const char* name, const char* text) const { std::ofstream(path / name) << text; }

    const std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("krTables" + std::to_string(::getpid()));
    KrPerformanceTables tables{path.string(), path.string()};
};

TEST_F(TableFolder, IsRead)
{
    write("stat", goodStat);
    write("7/stat", goodProcess);
    write("diskstats", " 254 0 vda 1 0 2 0 3 0 4 0 5 6 0\n 254 1 vda1 1 0 2 0 3 0 4 0 5 6 0\n");
    std::filesystem::create_directories(path / "vda/device");
    EXPECT_EQ(tables.getProcessors().record.all.getBusy(), 40U);
    EXPECT_EQ(tables.getProcessors().record.all.getTotal(), 345U);
    EXPECT_EQ(tables.getProcessors().record.contextSwitches, 99U);
    ASSERT_EQ(tables.getProcesses().record.size(), 1U);
    const KrProcessRecord& process = tables.getProcesses().record[0];
    EXPECT_EQ(process.name, "a) b) (c");
    EXPECT_EQ(process.faults, 120U);
    EXPECT_EQ(process.threads, 3U);
    EXPECT_EQ(process.residentPages, 6U);
    ASSERT_EQ(tables.getDisks().record.size(), 1U); // the partition is left out
    EXPECT_EQ(tables.getDisks().record[0].busyMilliseconds, 6U);
}

TEST_F(TableFolder, MalformedTablesAreTold)
{
    using State = KrPerformanceTables::State;
    const auto state = [this](const char* table, const char* text)
    {
        write(table, text);
        tables.begin();
        const std::string name = table;
        return name == "stat"        ? tables.getProcessors().state
               : name == "meminfo"   ? tables.getMemory().state
               : name == "vmstat"    ? tables.getPaging().state
               : name == "diskstats" ? tables.getDisks().state
                                     : tables.getProcesses().state;
    };
    EXPECT_EQ(tables.getProcessors().state, State::unreadable); // none of them is there
    EXPECT_EQ(tables.getDisks().state, State::unreadable);
    EXPECT_EQ(tables.getProcesses().state, State::good);
    const struct
    {
        const char* table;
        const char* text;
        State expected;
    } cases[] = {
        {"stat", goodStat, State::good},
        {"stat", "", State::malformed},
        {"stat", "cpu 1 2 3 4 5 6 7 8\n", State::malformed},
        {"stat", "cpu 1 2 3\nctxt 1\n", State::malformed},
        {"stat", "cpu 1 2 3 4 5 6 7 x\nctxt 1\n", State::malformed},
        {"stat", "cpu 1 2 3 4 5 6 7 8\ncpux 1 2 3 4 5 6 7 8\nctxt 1\n", State::malformed},
        {"stat", "cpu 1 2 3 4 5 6 7 99999999999999999999\nctxt 1\n", State::malformed},
        {"meminfo", "MemTotal: 5 kB\n", State::malformed},
        {"vmstat", "pgfault 1\npswpin 2\npswpout 3\n", State::good},
        {"vmstat", "pgfault -1\npswpin 2\npswpout 3\n", State::malformed},
        {"diskstats", "", State::good},
        {"diskstats", "254 0 vda 1 2 3\n", State::malformed},
        {"7/stat", goodProcess, State::good},
        {"7/stat", "7 (a", State::malformed},
        {"7/stat", ")(", State::malformed},
        {"7/stat", "7 (a) S 1", State::malformed},
    };
    for (const auto& each : cases)
        EXPECT_EQ(state(each.table, each.text), each.expected) << each.table << ": " << each.text;
}

} // namespace

#include <base/assert.h>
#include <base/exBase.h>
#include <base/internal/os/osProcessorQuery.h>
#include <base/osProcessor.h>

#include <gtest/gtest.h>

#include <map>
#include <utility>

namespace
{

using Kr::OsProcessor;

/// Answers what was recorded, zeros elsewhere.
class Recorded : public Kr::OsProcessorQuery
{
public:
    Registers identify(std::uint32_t leaf, std::uint32_t subleaf) override
    {
        const auto found = answers.find({leaf, subleaf});
        return found == answers.end() ? Registers{} : found->second;
    }
    std::uint64_t getSavedStates() override { return savedStates; }
    int getNbThreads() override { return 12; }
    std::uint64_t getPageSize() override { return 4096; }
    std::uint64_t getLargePageSize() override { return 2 << 20; }

    std::map<std::pair<std::uint32_t, std::uint32_t>, Registers> answers;
    std::uint64_t savedStates = 0xE7;
};

/// A desktop processor of 2020: family 25, model 33, six cores of two threads, caches in the
/// extended leaf, no 512-bit registers.
Recorded makeDesktop()
{
    Recorded recorded;
    recorded.answers = {
        {{0x0, 0}, {0x10, 0x68747541, 0x444D4163, 0x69746E65}},
        {{0x1, 0}, {0x00A20F12, 0, 0x7EF8320B, 0x178BFBFF}},
        {{0x7, 0}, {0, 0x219C97A9, 0x0040068C, 0}},
        {{0xB, 0}, {1, 2, 0x100, 0}},
        {{0x80000000, 0}, {0x80000023, 0, 0, 0}},
        {{0x80000002, 0}, {0x20202020, 0x6F727020, 0x73736563, 0x3120726F}}, // "     processor 1"
        {{0x8000001D, 0}, {0x00004121, 0x01C0003F, 63, 0}},
        {{0x8000001D, 1}, {0x00004122, 0x01C0003F, 63, 0}},
        {{0x8000001D, 2}, {0x00004143, 0x01C0003F, 1023, 0}},
        {{0x8000001D, 3}, {0x0002C163, 0x03C0003F, 32767, 0}},
    };
    return recorded;
}

TEST(Processor, ReadsARecordedOne)
{
    Recorded recorded = makeDesktop();
    const OsProcessor processor(recorded);
    EXPECT_EQ(processor.getVendor(), "AuthenticAMD");
    EXPECT_EQ(processor.getBrand(), "processor 1");
    EXPECT_EQ(processor.getFamily(), 25);
    EXPECT_EQ(processor.getModel(), 33);
    EXPECT_EQ(processor.getStepping(), 2);
    EXPECT_EQ(processor.getNbCores(), 6);
    EXPECT_EQ(processor.getNbThreads(), 12);
    EXPECT_TRUE(processor.has(OsProcessor::Avx2) && processor.has(OsProcessor::Sha));
    EXPECT_FALSE(processor.has(OsProcessor::Avx512F));

    ASSERT_EQ(processor.getCaches().size(), 4U);
    const OsProcessor::Cache* last = processor.findCache(3, OsProcessor::Cache::Unified);
    ASSERT_NE(last, nullptr);
    EXPECT_EQ(last->_size, 32U << 20);
    EXPECT_EQ(last->_ways, 16);
    EXPECT_EQ(last->_lineSize, 64);
    EXPECT_EQ(last->_nbSets, 32768);
    EXPECT_EQ(last->_maxSharing, 12);
    EXPECT_EQ(processor.findCache(1, OsProcessor::Cache::Data)->_size, 32U << 10);
    EXPECT_EQ(processor.findCache(2, OsProcessor::Cache::Data), nullptr);
}

TEST(Processor, CountsAFeatureOnlyIfTheSystemSavesItsRegisters)
{
    Recorded recorded = makeDesktop();
    recorded.answers[{0x7, 0}]._ebx |= 1U << 16; // 512-bit registers
    for (const auto& [states, has256, has512] :
         {std::tuple<std::uint64_t, bool, bool>{0xE7, true, true},
          {0x07, true, false},
          {0x03, false, false}})
    {
        recorded.savedStates = states;
        const OsProcessor processor(recorded);
        EXPECT_EQ(processor.has(OsProcessor::Avx2), has256);
        EXPECT_EQ(processor.has(OsProcessor::Avx512F), has512);
        EXPECT_TRUE(processor.has(OsProcessor::Sse42));
    }
}

TEST(Processor, IsEmptyWhereNothingIsTold)
{
    Recorded silent;
    const OsProcessor processor(silent);
    EXPECT_EQ(processor.getBrand(), "");
    EXPECT_EQ(processor.getFamily(), 0);
    EXPECT_EQ(processor.getNbCores(), 0);
    EXPECT_TRUE(processor.getCaches().empty());
    for (int feature = 0; feature < OsProcessor::NbFeatures; ++feature)
        EXPECT_FALSE(processor.has(static_cast<OsProcessor::Feature>(feature)));
    EXPECT_STREQ(OsProcessor::getFeatureName(OsProcessor::Avx512Vnni), "AVX-512VNNI");
    EXPECT_THROW(OsProcessor::getFeatureName(OsProcessor::NbFeatures), Kr::ExInternalError);
}

TEST(Processor, DescribesThisMachineAsItsCompilerDoes)
{
    const OsProcessor& processor = OsProcessor::getInstance();
    __builtin_cpu_init();
    EXPECT_EQ(processor.has(OsProcessor::Avx2), __builtin_cpu_supports("avx2") != 0);
    EXPECT_EQ(processor.has(OsProcessor::Avx512F), __builtin_cpu_supports("avx512f") != 0);
    EXPECT_EQ(processor.has(OsProcessor::Popcnt), __builtin_cpu_supports("popcnt") != 0);
    for (const OsProcessor::Cache& cache : processor.getCaches())
        EXPECT_EQ(cache._size % (static_cast<std::uint64_t>(cache._ways) *
                                 static_cast<std::uint64_t>(cache._lineSize) *
                                 static_cast<std::uint64_t>(cache._nbSets)),
                  0U);
    EXPECT_GE(processor.getPageSize(), 4096U);
}

} // namespace

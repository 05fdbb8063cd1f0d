// Queues that outlive their process: what is recovered, what is not written twice, and files that
// were made to do damage.

#include "logTestFiles.h"

#include <base/internal/errors/processIdentity.h>
#include <base/internal/errors/threadLabel.h>
#include <base/internal/log/lgKeptRings.h>
#include <base/internal/log/lgRescue.h>
#include <base/internal/log/lgRingImage.h>
#include <base/lgRecovery.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <deque>
#include <random>
#include <regex>

namespace
{

using Kr::LgKeptRings;
using Kr::LgQueue;
using Kr::LgRecovery;
using Kr::LgRingImage;
using LogTest::Folder;
using LogTest::textOf;

/// A process that can die here: what it leaves is its file.
class Process
{
public:
    explicit Process(const Folder& folder)
    {
        for (auto& destination : _settings.destinations)
            destination = {Kr::LgDestination::file, folder / "events.log"};
        _settings.directory = folder.getPath();
    }

    Kr::LgSettings& getSettings() { return _settings; }

    LgQueue& addQueue(unsigned long thread, const char* name = "")
    {
        if (_rings == nullptr)
            _rings = std::make_unique<LgKeptRings>(_settings, _clock);
        Kr::ThreadLabel& label = _labels.emplace_back();
        label.set(name);
        // Not owned by the queue, which is left without an end as a killed process leaves it.
        return *_rings->addQueue(thread, {std::shared_ptr<void>(), &label});
    }

    LgKeptRings& getRings() { return *_rings; }

    void die()
    {
        _rings->abandon();
        _rings.reset();
    }

private:
    Kr::LgSettings _settings;
    const Kr::LgClock _clock;
    std::deque<Kr::ThreadLabel> _labels;
    std::unique_ptr<LgKeptRings> _rings;
};

void put(LgQueue& queue, const std::string& text, Kr::LgTypes::Level level = Kr::LgTypes::Warning,
         std::uint16_t group = 0)
{
    if (!queue.reserveGroupEntry(level, group))
        return;
    queue.getStream() << text;
    queue.addEntry();
}

std::string takeText(LgQueue& queue)
{
    std::string text(queue.getStream().getNextSize() + 1, '\0');
    queue.getStream() >> text.data();
    queue.removeEntry();
    text.pop_back();
    return text;
}

/// The texts in the log, the recovery's own line left out.
std::vector<std::string> readTexts(const std::string& path)
{
    std::vector<std::string> texts;
    for (const std::string& line : LogTest::readLines(path))
        if (line.find(" Logger ") == line.npos)
            texts.push_back(textOf(line));
    return texts;
}

using Texts = std::vector<std::string>;

TEST(LogKept, RecoversWhatWasComplete)
{
    const Folder folder;
    Process process(folder);
    const std::uint16_t group = Kr::LgGroupNames::getNumber("Kept");
    LgQueue& queue = process.addQueue(17);
    LgQueue& other = process.addQueue(0, "painter");
    const std::uint16_t lateGroup = Kr::LgGroupNames::getNumber("Late");
    put(queue, "first", Kr::LgTypes::Error, group);
    put(other, "second", Kr::LgTypes::Warning, lateGroup);
    put(queue, std::string(40000, 'x'), Kr::LgTypes::Warning, group);
    put(queue, "third\n");
    ASSERT_TRUE(other.reserveEntry(Kr::LgTypes::Error));
    other.getStream() << "half a mess";
    process.die();
    const LgRecovery::Result result = LgRecovery::recover(folder.getPath().c_str());
    EXPECT_TRUE(result.problems.empty() && result.processes == 1 && result.messages == 4);
    std::string shown;
    for (const std::string& line : LogTest::readLines(folder / "events.log"))
        shown += std::regex_replace(line.substr(29), std::regex(" +([0-9]+:)?"), " ") + '\n';
    const std::string number = std::to_string(Kr::ProcessIdentity::getProcessId());
    EXPECT_EQ(shown, "Warning main Logger process " + number +
                         " ended before it had written its log; recovered: 4 messages, and the "
                         "loss of 0\n"
                         "Error 17 Kept first\nWarning painter Late second\nWarning 17 Kept #\n"
                         "Warning 17 - third\\n\n");
    EXPECT_EQ(LgRecovery::recover(folder.getPath().c_str()).processes, 0U);
    for (const auto& entry : std::filesystem::directory_iterator(folder.getPath()))
        EXPECT_NE(entry.path().extension(), ".rings");
}

/// The reader takes messages without giving back their room, until a commit; a loss behind them
/// waits, so that there is room for the next one. Many times round the rings.
TEST(LogKept, HoldsBackUntilTheCommit)
{
    const Folder folder;
    Process process(folder);
    LgQueue& queue = process.addQueue(1);
    int logged = 0;
    int read = 0;
    for (int round = 0; round < 20; ++round)
    {
        int taken = 0;
        while (!queue.isFull())
            put(queue, std::to_string(logged++));
        put(queue, "lost");
        for (; queue.hasUnread(); ++taken)
            EXPECT_EQ(takeText(queue), std::to_string(read++));
        EXPECT_EQ(taken, 1022);
        EXPECT_TRUE(queue.isFull());
        put(queue, "lost, too");
        process.getRings().commit();
        ASSERT_TRUE(queue.hasUnread());
        EXPECT_EQ(queue.readEntry().getOverflowCount(), 2);
        queue.removeEntry();
        EXPECT_FALSE(queue.hasUnread());
        process.getRings().commit();
        EXPECT_TRUE(queue.isEmpty());
    }
    put(queue, "rest");
    process.die();
    EXPECT_EQ(LgRecovery::recover(folder.getPath().c_str()).messages, 1U);
    EXPECT_EQ(readTexts(folder / "events.log"), Texts{"rest"});
}

/// Messages that were read and not committed: some are in their log, and all read alike.
TEST(LogKept, WritesNothingTwice)
{
    for (std::size_t written = 0; written <= 4; ++written)
        for (const bool isRotated : {false, true})
        {
            const Folder folder;
            const std::string path = folder / "events.log";
            Process process(folder);
            process.getSettings().hasTimeStamps = false;
            LgQueue& queue = process.addQueue(1);
            const auto write = [&](const std::string& text)
            {
                char line[100];
                std::snprintf(line, sizeof line, "%-16s%-16s%-14s%s\n", "Warning",
                              (std::to_string(Kr::ProcessIdentity::getProcessId()) + ":1").c_str(),
                              "-", text.c_str());
                std::ofstream(path, std::ios::app | std::ios::binary) << line;
            };
            for (int i = 0; i < 3; ++i)
                put(queue, "same");
            for (int i = 0; i < 3; ++i)
                write(takeText(queue));
            process.getRings().commit();
            for (int i = 0; i < 4; ++i)
                put(queue, "same");
            for (std::size_t i = 0; i < written; ++i)
            {
                if (i == 1 && isRotated)
                    std::filesystem::rename(path, path + ".1");
                write("same");
            }
            process.die();
            EXPECT_EQ(LgRecovery::recover(folder.getPath().c_str()).messages, 4 - written);
            const std::string all = LogTest::readFile(path + ".1") + LogTest::readFile(path);
            std::size_t count = 0;
            for (std::size_t at = all.find("same"); at != all.npos; at = all.find("same", at + 1))
                ++count;
            EXPECT_EQ(count, 7U) << written << (isRotated ? ", rotated" : "");
        }
}

/// A log of another folder is trusted only if the process that recovers writes it, too.
TEST(LogKept, TrustsNoPath)
{
    for (const bool isOwn : {false, true})
    {
        const Folder folder;
        const Folder elsewhere;
        Process process(folder);
        process.getSettings().destinations[Kr::LgTypes::Warning].path = elsewhere / "a.log";
        process.getSettings().destinations[Kr::LgTypes::Error].kind =
            Kr::LgDestination::standardError;
        process.getSettings().destinations[Kr::LgTypes::Tracing].kind = Kr::LgDestination::none;
        LgQueue& queue = process.addQueue(1);
        for (const auto level : {Kr::LgTypes::Warning, Kr::LgTypes::Error, Kr::LgTypes::Tracing})
            put(queue, Kr::LgTypes::getLevelName(level), level);
        process.die();
        Kr::LgRescue(folder.getPath(), isOwn ? &process.getSettings() : nullptr).run();
        EXPECT_EQ(readTexts(elsewhere / "a.log"), isOwn ? Texts{"Warning"} : Texts());
        EXPECT_EQ(readTexts(folder / "events.log"),
                  isOwn ? Texts{"Error"} : (Texts{"Warning", "Error"}));
    }
}

/// A sound file: the header, names, a queue.
std::string makeImage()
{
    const Folder folder;
    Process process(folder);
    LgQueue& queue = process.addQueue(1, "one");
    for (int i = 0; i < 300; ++i)
        put(queue, "message " + std::to_string(i), Kr::LgTypes::Warning, 1);
    for (int i = 0; i < 100; ++i)
        takeText(queue);
    process.getRings().commit();
    process.die();
    return LogTest::readFile(
        std::filesystem::directory_iterator(folder.getPath())->path().string());
}

/// Puts a number that means something where a number stands.
void damage(std::string& bytes, std::mt19937& random)
{
    const std::size_t chunk = random() % 3 * Kr::LgRingFormat::chunkSize;
    const std::size_t reach = random() % 2 == 0 ? 256 : 4096;
    const std::uint32_t values[] = {
        0, 1, 0xFFFFFFFF, 0x80000000, 65535, 65536, static_cast<std::uint32_t>(random())};
    std::memcpy(&bytes[chunk + random() % reach / 4 * 4], &values[random() % 7], 4);
}

TEST(LogKept, ReadsDamagedFilesWithoutHarm)
{
    const std::string sound = makeImage();
    ASSERT_EQ(sound.size(), 3 * Kr::LgRingFormat::chunkSize);
    std::mt19937 random(1);
    int refused = 0;
    for (int round = 0; round < 3000; ++round)
    {
        std::string bytes = sound;
        for (int i = round == 0 ? 0 : 1 + static_cast<int>(random() % 8); i > 0; --i)
            damage(bytes, random);
        const auto* const chunks = reinterpret_cast<const LgRingImage::Chunk*>(bytes.data());
        LgRingImage image;
        if (!image.readHeader(chunks[0]) && ++refused != 0)
            continue;
        image.readChunk(chunks[1]);
        image.readChunk(chunks[2]);
        const std::vector<LgRingImage::Message> messages = image.takeMessages();
        EXPECT_LE(messages.size(), 4096U);
        for (const LgRingImage::Message& message : messages)
        {
            EXPECT_LT(message.level, Kr::LgTypes::NUM_LEVELS);
            EXPECT_GE(image.getClock().getTimeOfDay(message.timeStamp), 0);
        }
        EXPECT_TRUE(round != 0 || (messages.size() == 200 && messages[0].text == "message 100"));
    }
    EXPECT_GT(refused, 0);
}

/// What is no file of rings, or one of another version, stays as it is.
TEST(LogKept, LeavesOtherFilesAlone)
{
    const Folder folder;
    std::string other = makeImage();
    other[8] = 77;
    for (const std::string& content : {std::string(), std::string("text"), other})
    {
        std::ofstream(folder / "log-1.rings", std::ios::binary) << content;
        const LgRecovery::Result result = LgRecovery::recover(folder.getPath().c_str());
        EXPECT_TRUE(result.problems.empty() && result.processes == 0);
        EXPECT_EQ(LogTest::readFile(folder / "log-1.rings"), content);
    }
    EXPECT_EQ(LgRecovery::recover((folder / "none").c_str()).problems.size(), 1U);
}

} // namespace

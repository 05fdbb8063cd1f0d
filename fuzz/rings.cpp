// Files of rings as a stranger may leave them: a sound one, with numbers in it changed. Whatever
// they are, reading stays inside of the file, ends, and gives messages that can be written.

#include <base/internal/errors/threadLabel.h>
#include <base/internal/log/lgKeptRings.h>
#include <base/internal/log/lgRingImage.h>

#include <logTestFiles.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

namespace
{

constexpr std::size_t numChunks = 3; // the header, names, a queue

using Chunks = std::vector<unsigned char>;

Chunks makeSoundFile()
{
    const LogTest::Folder folder;
    Kr::LgSettings settings;
    settings.directory = folder.getPath();
    const auto rings = std::make_unique<Kr::LgKeptRings>(settings, Kr::LgClock());
    static Kr::ThreadLabel label; // not owned by the queue, which has no end
    label.set("painter");
    Kr::LgQueue& queue = *rings->addQueue(7, {std::shared_ptr<void>(), &label});
    const std::uint16_t group = Kr::LgGroupNames::getNumber("Group");
    for (int i = 0; i < 1200; ++i)
        if (queue.reserveGroupEntry(Kr::LgTypes::Warning, group))
        {
            queue.getStream() << "message " << i;
            queue.addEntry();
        }
    rings->abandon();
    std::string bytes;
    for (const auto& entry : std::filesystem::directory_iterator(folder.getPath()))
        bytes = LogTest::readFile(entry.path().string());
    bytes.resize(numChunks * Kr::LgRingFormat::chunkSize);
    return {bytes.begin(), bytes.end()};
}

/// Each 8 bytes of the input say where, and what 32 bits stand there.
void change(Chunks& chunks, const std::uint8_t* data, std::size_t size)
{
    for (; size >= 8; data += 8, size -= 8)
    {
        std::uint16_t place = 0;
        std::memcpy(&place, data + 2, sizeof place);
        const std::size_t at = data[0] % numChunks * Kr::LgRingFormat::chunkSize + place;
        std::memcpy(chunks.data() + std::min(at, chunks.size() - 4), data + 4, 4);
    }
}

void require(bool holds)
{
    if (!holds)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const Chunks sound = makeSoundFile();
    Chunks chunks = sound;
    change(chunks, data, size);
    const auto* const each = reinterpret_cast<const Kr::LgRingImage::Chunk*>(chunks.data());
    Kr::LgRingImage image;
    if (!image.readHeader(each[0]))
        return 0;
    for (std::size_t i = 1; i < numChunks; ++i)
        image.readChunk(each[i]);
    for (const Kr::LgRingImage::Message& message : image.takeMessages())
    {
        require(message.level < Kr::LgTypes::NUM_LEVELS);
        require(message.text.size() < Kr::LgRingFormat::chunkSize);
        require(message.text.find('\0') == message.text.npos);
        require(image.getClock().getTimeOfDay(message.timeStamp) >= 0);
    }
    return 0;
}

#include <base/internal/errors/raiseHistory.h>

#include <base/internal/errors/fixedText.h>
#include <base/internal/errors/processIdentity.h>
#include <base/threadName.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <typeinfo>

namespace Kr
{

namespace
{

/// What is kept of a raise: four texts one after the other, each with its terminator.
struct Record
{
    std::int64_t microseconds; // since the clock's epoch
    std::uint32_t thread;
    std::int32_t line;
    char texts[TraceHistorySizes::typeSize + TraceHistorySizes::fileSize +
               TraceHistorySizes::reasonSize + TraceHistorySizes::threadNameSize];
};

/// Appends at most `size - 1` characters and a terminator; returns where the next text begins.
char* appendText(char* to, const char* text, std::size_t size)
{
    const char* from = orEmpty(text);
    const char* end = static_cast<const char*>(std::memchr(from, '\0', size - 1));
    const std::size_t length = end != nullptr ? static_cast<std::size_t>(end - from) : size - 1;
    std::memcpy(to, from, length);
    to[length] = '\0';
    return to + length + 1;
}

/// A record that one thread writes while others may read. The sequence is odd while a writer is at
/// work, and else twice the number of raises up to this one; a reader that finds it changed has
/// read a mixture and drops it. The words are atomic because readers and writers do meet; release
/// and acquire on them keep the sequence's changes on the right side of theirs.
class Slot
{
public:
    /// `size` is the size of the part of the record that is in use. Gives up when another raise is
    /// being written here, or a later one has been: 32 raises have happened meanwhile.
    void write(const Record& record, std::size_t size, std::uint32_t ticket) noexcept
    {
        const std::uint32_t writing = 2 * ticket + 1;
        std::uint32_t current = _sequence.load(std::memory_order_relaxed);
        if (current % 2 != 0 || static_cast<std::int32_t>(writing - current) < 0)
            return;
        if (!_sequence.compare_exchange_strong(current, writing, std::memory_order_acquire,
                                               std::memory_order_relaxed))
            return;
        const char* from = reinterpret_cast<const char*>(&record);
        for (std::size_t i = 0; i * sizeof(Word) < size; ++i)
        {
            Word word;
            std::memcpy(&word, from + i * sizeof(Word), sizeof word);
            _words[i].store(word, std::memory_order_release);
        }
        _sequence.store(writing + 1, std::memory_order_release);
    }

    /// False when the slot does not hold that raise.
    bool read(Record& record, std::uint32_t ticket) const noexcept
    {
        if (_sequence.load(std::memory_order_acquire) != 2 * ticket + 2)
            return false;
        char* to = reinterpret_cast<char*>(&record);
        for (std::size_t i = 0; i < wordCount; ++i)
        {
            const Word word = _words[i].load(std::memory_order_acquire);
            std::memcpy(to + i * sizeof(Word), &word, sizeof word);
        }
        return _sequence.load(std::memory_order_relaxed) == 2 * ticket + 2;
    }

private:
    using Word = std::uintptr_t;
    static constexpr std::size_t wordCount = sizeof(Record) / sizeof(Word);
    static_assert(sizeof(Record) % sizeof(Word) == 0 && std::atomic<Word>::is_always_lock_free);

    std::atomic<std::uint32_t> _sequence{0};
    std::atomic<Word> _words[wordCount] = {};
};

constexpr std::uint32_t slotCount = TraceHistorySizes::historySize;

Slot slots[slotCount];
std::atomic<std::uint32_t> raiseCount{0};

} // namespace

void RaiseHistory::record(const ExBase& exception) noexcept
{
    using std::chrono::duration_cast;
    using std::chrono::microseconds;
    Record record;
    record.microseconds =
        duration_cast<microseconds>(std::chrono::system_clock::now().time_since_epoch()).count();
    record.thread = ProcessIdentity::getThreadId();
    record.line = exception.getLineNo();
    char* end = appendText(record.texts, typeid(exception).name(), TraceHistorySizes::typeSize);
    end = appendText(end, exception.getFileName(), TraceHistorySizes::fileSize);
    end = appendText(end, exception.getReason(), TraceHistorySizes::reasonSize);
    end = appendText(end, ThreadName::get(), TraceHistorySizes::threadNameSize);
    while ((end - record.texts) % static_cast<std::ptrdiff_t>(sizeof(std::uintptr_t)) != 0)
        *end++ = '\0';
    const std::uint32_t ticket = raiseCount.fetch_add(1, std::memory_order_relaxed);
    slots[ticket % slotCount].write(
        record, static_cast<std::size_t>(end - reinterpret_cast<const char*>(&record)), ticket);
}

void RaiseHistory::visit(TraceRaise::Visitor visitor, void* context)
{
    const std::uint32_t count = raiseCount.load(std::memory_order_acquire);
    Record record;
    for (std::uint32_t age = std::min(count, slotCount); age > 0; --age)
    {
        const std::uint32_t ticket = count - age;
        if (!slots[ticket % slotCount].read(record, ticket))
            continue;
        const char* file = record.texts + std::strlen(record.texts) + 1;
        const char* reason = file + std::strlen(file) + 1;
        const char* threadName = reason + std::strlen(reason) + 1;
        using std::chrono::system_clock;
        const system_clock::time_point time(std::chrono::duration_cast<system_clock::duration>(
            std::chrono::microseconds(record.microseconds)));
        visitor(
            TraceRaise{record.texts, file, record.line, reason, record.thread, threadName, time},
            context);
    }
}

} // namespace Kr

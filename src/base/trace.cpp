#include <base/trace.h>

#include <base/osEnv.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <ostream>
#include <typeinfo>

namespace Kr
{

namespace
{

// Everything in this file is constant-initialised and has no destructor that runs, so that static
// objects of any library can raise in their constructors and destructors.

// --- the last raises ---

/// What is kept of a raise: three texts one after the other, each with its terminator.
struct Record
{
    std::int64_t microseconds; // since the clock's epoch
    std::uint32_t thread;
    std::int32_t line;
    char texts[TraceManager::typeSize + TraceManager::fileSize + TraceManager::reasonSize];
};

/// Appends at most `size - 1` characters and a terminator; returns where the next text begins.
char* appendText(char* to, const char* text, std::size_t size)
{
    const char* from = text != nullptr ? text : "";
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

constexpr std::uint32_t slotCount = TraceManager::historySize;

Slot slots[slotCount];
std::atomic<std::uint32_t> raiseCount{0};

void recordRaise(const ExBase& exception, std::uint32_t thread) noexcept
{
    using std::chrono::duration_cast;
    using std::chrono::microseconds;
    Record record;
    record.microseconds =
        duration_cast<microseconds>(std::chrono::system_clock::now().time_since_epoch()).count();
    record.thread = thread;
    record.line = exception.getLineNo();
    char* end = appendText(record.texts, typeid(exception).name(), TraceManager::typeSize);
    end = appendText(end, exception.getFileName(), TraceManager::fileSize);
    end = appendText(end, exception.getReason(), TraceManager::reasonSize);
    while ((end - record.texts) % static_cast<std::ptrdiff_t>(sizeof(std::uintptr_t)) != 0)
        *end++ = '\0';
    const std::uint32_t ticket = raiseCount.fetch_add(1, std::memory_order_relaxed);
    slots[ticket % slotCount].write(
        record, static_cast<std::size_t>(end - reinterpret_cast<const char*>(&record)), ticket);
}

struct Date
{
    std::int64_t year;
    int month, day;
};

/// Of the proleptic Gregorian calendar, counted in eras of 400 years that begin on 1 March
/// (H. Hinnant, "chrono-Compatible Low-Level Date Algorithms", 2014). The runtime's `gmtime` is
/// not safe between threads.
Date dateFromDays(std::int64_t daysSince1970)
{
    const std::int64_t days = daysSince1970 + 719468;
    const std::int64_t era = days / 146097;
    const int dayOfEra = static_cast<int>(days % 146097);
    const int yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const int dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const int shiftedMonth = (5 * dayOfYear + 2) / 153; // 0 is March
    const int day = dayOfYear - (153 * shiftedMonth + 2) / 5 + 1;
    const int month = shiftedMonth < 10 ? shiftedMonth + 3 : shiftedMonth - 9;
    return {era * 400 + yearOfEra + (month <= 2 ? 1 : 0), month, day};
}

using RaiseLine = char[1024];

/// Formats a raise as one line; returns its length.
std::size_t formatRaise(RaiseLine& text, const TraceManager::Raise& raise)
{
    const std::int64_t microseconds =
        std::chrono::duration_cast<std::chrono::microseconds>(raise.time.time_since_epoch())
            .count();
    const std::int64_t seconds = microseconds / 1000000;
    const Date date = dateFromDays(seconds / 86400);
    const int second = static_cast<int>(seconds % 86400);
    const int length = std::snprintf(
        text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d.%06d thread %lu %s:%d %s: %s\n",
        static_cast<int>(date.year), date.month, date.day, second / 3600, second / 60 % 60,
        second % 60, static_cast<int>(microseconds % 1000000),
        static_cast<unsigned long>(raise.thread), raise.file, static_cast<int>(raise.line),
        raise.type, raise.reason);
    return length > 0 ? static_cast<std::size_t>(length) : 0;
}

// --- the options ---

enum Option : unsigned
{
    OptionsRead = 1,
    PrintExceptions = 2,
    ListHistory = 4
};

struct OptionWord
{
    const char* word;
    unsigned option;
};

constexpr OptionWord optionWords[] = {
    {"none", 0}, {"exceptions", PrintExceptions}, {"history", ListHistory}};

std::atomic<unsigned> traceOptions{0};
std::atomic<bool> optionsReported{false};
std::atomic<std::terminate_handler> previousTerminate{nullptr};

bool isWord(const char* word, const char* begin, std::size_t length)
{
    return std::strlen(word) == length && std::memcmp(word, begin, length) == 0;
}

unsigned parseWord(const char* begin, std::size_t length, bool report)
{
    for (const OptionWord& entry : optionWords)
        if (isWord(entry.word, begin, length))
            return entry.option;
    if (report && length != 0)
        std::printf("KR_TRACE_OPTIONS: skipping the unknown word '%.*s'; the words are none, "
                    "exceptions, history.\n",
                    length < 256 ? static_cast<int>(length) : 256, begin);
    return 0;
}

unsigned parseOptions(const char* text, bool report)
{
    unsigned options = OptionsRead;
    while (text != nullptr && *text != '\0')
    {
        const std::size_t length = std::strcspn(text, ",");
        options |= parseWord(text, length, report);
        text += length;
        text += *text == ',' ? 1 : 0;
    }
    return options;
}

[[noreturn]] void listHistoryAndTerminate()
{
    std::fputs("The last raises:\n", stderr);
    const auto print = [](const TraceManager::Raise& raise, void*)
    {
        RaiseLine text;
        formatRaise(text, raise);
        std::fputs(text, stderr);
    };
    TraceManager::getInstance().visitRaises(print, nullptr);
    if (const std::terminate_handler previous = previousTerminate.load())
        previous();
    std::abort();
}

/// Threads that raise for the first time together all read the variable, and find the same; one of
/// them reports and installs.
unsigned readOptions() noexcept
{
    const bool first = !optionsReported.exchange(true);
    const unsigned options = parseOptions(OsEnv::getVariable("KR_TRACE_OPTIONS"), first);
    if (first && (options & ListHistory) != 0)
        previousTerminate = std::set_terminate(listHistoryAndTerminate);
    traceOptions.store(options, std::memory_order_relaxed);
    return options;
}

unsigned getOptions() noexcept
{
    const unsigned options = traceOptions.load(std::memory_order_relaxed);
    return options != 0 ? options : readOptions();
}

// --- the trace ---

/// Keeps the built-in trace from being destroyed.
union Immortal
{
    constexpr Immortal() noexcept
        : trace()
    {
    }
    ~Immortal() {} // NOLINT: a defaulted one would be deleted

    Trace trace;
};

Immortal builtIn;
std::atomic<Trace*> installed{&builtIn.trace};
TraceManager manager;

} // namespace

Trace::~Trace()
{
    Trace* self = this;
    installed.compare_exchange_strong(self, &builtIn.trace);
}

void Trace::printException(const ExBase& exception, const char* file, int line) noexcept
{
    const int error = errno;
    if ((getOptions() & PrintExceptions) != 0)
        std::fprintf(stderr, "Raise at %s:%d: %s\n", file != nullptr ? file : "", line,
                     exception.getDetailedReason());
    errno = error;
}

TraceManager& TraceManager::getInstance() noexcept
{
    return manager;
}

Trace& TraceManager::getTrace() const noexcept
{
    return *installed.load(std::memory_order_acquire);
}

Trace& TraceManager::setTrace(Trace& trace) noexcept
{
    return *installed.exchange(&trace, std::memory_order_acq_rel);
}

void TraceManager::reportException(const ExBase& exception, const char* file, int line) noexcept
{
    recordRaise(exception, performGetThread());
    getTrace().printException(exception, file, line);
}

void TraceManager::visitRaises(RaiseVisitor visitor, void* context) const
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
        using std::chrono::system_clock;
        const system_clock::time_point time(std::chrono::duration_cast<system_clock::duration>(
            std::chrono::microseconds(record.microseconds)));
        visitor(Raise{record.texts, file, record.line, reason, record.thread, time}, context);
    }
}

void TraceManager::listRaises(std::ostream& os) const
{
    const auto write = [](const Raise& raise, void* stream)
    {
        RaiseLine text;
        const std::size_t length = formatRaise(text, raise);
        static_cast<std::ostream*>(stream)->write(text, static_cast<std::streamsize>(length));
    };
    visitRaises(write, &os);
}

} // namespace Kr

#include <base/internal/errors/traceOptions.h>

#include <base/internal/errors/demangle.h>
#include <base/internal/errors/fixedText.h>
#include <base/internal/errors/raiseHistory.h>
#include <base/osEnv.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string_view>

namespace Kr
{

namespace
{

enum Option : unsigned
{
    OptionsRead = 1,
    PrintExceptions = 2,
    ListHistory = 4
};

struct OptionWord
{
    std::string_view word;
    unsigned option;
};

constexpr OptionWord optionWords[] = {
    {"", 0}, {"none", 0}, {"exceptions", PrintExceptions}, {"history", ListHistory}};

// Constant-initialised: static objects of any library can raise.
std::atomic<unsigned> traceOptions{0};
std::atomic<bool> optionsReported{false};
std::atomic<std::terminate_handler> previousTerminate{nullptr};

/// Takes the next word off the text, and the comma behind it; without the blanks around it.
std::string_view takeWord(std::string_view& text)
{
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t comma = text.find(',');
    std::string_view word = text.substr(0, comma);
    text.remove_prefix(comma != std::string_view::npos ? comma + 1 : text.size());
    const std::size_t first = word.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return word.substr(first, word.find_last_not_of(blanks) + 1 - first);
}

/// At once, so that the report is there when the raise ends the program.
void reportUnknown(std::string_view word)
{
    constexpr std::size_t cut = 256;
    std::printf("KR_TRACE_OPTIONS: skipping the unknown word '%.*s'; the words are none, "
                "exceptions, history.\n",
                static_cast<int>(word.size() < cut ? word.size() : cut), word.data());
    std::fflush(stdout);
}

const OptionWord* findWord(std::string_view word)
{
    for (const OptionWord& entry : optionWords)
        if (entry.word == word)
            return &entry;
    return nullptr;
}

bool hasWord(std::string_view text, std::string_view word)
{
    while (!text.empty())
        if (takeWord(text) == word)
            return true;
    return false;
}

unsigned parseOptions(std::string_view text, bool report)
{
    unsigned options = OptionsRead;
    for (std::string_view rest = text; !rest.empty();)
    {
        const std::string_view before = text.substr(0, text.size() - rest.size());
        const std::string_view word = takeWord(rest);
        if (const OptionWord* known = findWord(word))
            options |= known->option;
        else if (report && !hasWord(before, word))
            reportUnknown(word);
    }
    return options;
}

[[noreturn]] void listHistoryAndTerminate()
{
    std::fputs("The last raises:\n", stderr);
    const auto print = [](const TraceRaise& raise, void*)
    {
        RaiseHistory::Line line;
        char type[TraceHistorySizes::typeSize]; // the program may be out of memory
        RaiseHistory::format(line, raise, demanglePlain(raise.type, type, sizeof type));
        std::fputs(line, stderr);
    };
    RaiseHistory::visit(print, nullptr);
    if (const std::terminate_handler previous = previousTerminate.load())
        previous();
    std::abort();
}

/// Threads that raise for the first time together all read the variable, and find the same; one of
/// them reports and installs.
unsigned readOptions() noexcept
{
    const int error = errno;
    const bool first = !optionsReported.exchange(true);
    const char* text = OsEnv::getVariable("KR_TRACE_OPTIONS");
    const unsigned options = parseOptions(orEmpty(text), first);
    if (first && (options & ListHistory) != 0)
        previousTerminate = std::set_terminate(listHistoryAndTerminate);
    traceOptions.store(options, std::memory_order_relaxed);
    errno = error;
    return options;
}

} // namespace

bool TraceOptions::arePrinting() noexcept
{
    const unsigned options = traceOptions.load(std::memory_order_relaxed);
    return ((options != 0 ? options : readOptions()) & PrintExceptions) != 0;
}

} // namespace Kr

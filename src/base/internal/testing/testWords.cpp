#include <base/internal/testing/testWords.h>

#include <cstdio>

namespace Kr
{

std::string TestWords::describeTime(double seconds)
{
    char text[64];
    if (seconds < 1.)
        std::snprintf(text, sizeof text, "%.1f ms", seconds * 1e3);
    else
        std::snprintf(text, sizeof text, "%.2f s", seconds);
    return text;
}

std::string TestWords::count(std::uint64_t number, const char* thing)
{
    return std::to_string(number) + ' ' + thing + (number == 1 ? "" : "s");
}

std::string TestWords::describeLeak(const TestLeak& leak)
{
    std::string text;
    if (leak.blocks > 0)
        text = count(static_cast<std::uint64_t>(leak.blocks), "block") + " of " +
               count(static_cast<std::uint64_t>(leak.bytes), "byte");
    if (leak.handles > 0)
        text +=
            (text.empty() ? "" : ", ") + count(static_cast<std::uint64_t>(leak.handles), "handle");
    return text;
}

std::string TestWords::describeFailure(const TestFailure& failure)
{
    if (failure.file.empty())
        return failure.text;
    return failure.file + ':' + std::to_string(failure.line) + ": " + failure.text;
}

std::string TestWords::indent(std::string_view text, std::string_view before)
{
    std::string indented;
    while (!text.empty())
    {
        const std::size_t end = text.find('\n');
        indented.append(before).append(text.substr(0, end)).append(1, '\n');
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return indented;
}

} // namespace Kr

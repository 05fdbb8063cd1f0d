// Fuzzes what people type for initialisation variables: the text of one value, and a whole command
// line. The first byte chooses.

#include "variablesFixture.h"

#include <base/inContextAlias.h>
#include <base/inVariable.h>
#include <base/inVariableEx.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

namespace
{

void require(bool holds)
{
    if (!holds)
        std::abort();
}

/// What is parsed is valid, and written so that it is parsed to the same value.
template <class T>
bool checkRoundTrip(const Kr::InValueForm<T>& form, const std::string& text, T& value)
{
    const T before = value;
    if (!form.parse(text, value))
    {
        require(value == before);
        return false;
    }
    require(form.isValid(value));
    T back{};
    require(form.parse(form.write(value), back) && back == value);
    return true;
}

/// An integer's text is what the runtime library takes too, and is written as it was, apart from
/// zeros and the sign of zero.
template <class T>
void checkInteger(const std::string& text)
{
    T value{};
    if (!checkRoundTrip<T>({}, text, value))
        return;
    const bool isNegative = text[0] == '-';
    require(isNegative ? std::strtoll(text.c_str(), nullptr, 10) == static_cast<long long>(value)
                       : std::strtoull(text.c_str(), nullptr, 10) ==
                             static_cast<unsigned long long>(value));
    require(std::all_of(text.begin() + (isNegative ? 1 : 0), text.end(),
                        [](char c) { return c >= '0' && c <= '9'; }));
    T ranged{};
    require(Kr::InValueForm<T>(1, 64).parse(text, ranged) == (value >= 1 && value <= 64));
}

void checkDouble(const std::string& text)
{
    double value = 0.;
    if (!checkRoundTrip<double>({}, text, value))
        return;
    require(std::isfinite(value));
    require(std::strtod(text.c_str(), nullptr) == value);
}

enum class Shading
{
    Flat,
    Smooth
};

void checkValue(std::uint8_t choice, const std::string& text)
{
    bool flag = false;
    Shading shading = Shading::Flat;
    switch (choice)
    {
    case 0:
        return checkInteger<std::int32_t>(text);
    case 1:
        return checkInteger<std::uint32_t>(text);
    case 2:
        return checkInteger<std::int64_t>(text);
    case 3:
        return checkInteger<std::uint64_t>(text);
    case 4:
        return checkDouble(text);
    case 5:
        checkRoundTrip<bool>({}, text, flag);
        return;
    default:
        checkRoundTrip<Shading>({{"flat", Shading::Flat}, {"smooth", Shading::Smooth}}, text,
                                shading);
    }
}

/// The words that are left stand in the order of the command line, the program name first, and
/// everything from "--" on among them.
void checkRemaining()
{
    const Kr::Vector<char*>& words = Kr::InContextAliasMgrBase::args();
    const Kr::Vector<char*> remaining = Kr::InContextAliasMgrBase::getRemainingWords();
    require(!remaining.empty() && remaining[0] == words[0]);
    auto next = words.begin();
    for (char* word : remaining)
    {
        next = std::find(next, words.end(), word);
        require(next != words.end());
        ++next;
    }
    const auto end = std::find_if(words.begin() + 1, words.end(),
                                  [](const char* word) { return std::strcmp(word, "--") == 0; });
    const auto count = words.end() - end;
    require(static_cast<std::ptrdiff_t>(remaining.size()) >= count &&
            std::equal(end, words.end(), remaining.end() - count));
}

/// Lines of the input are words.
void checkCommandLine(const std::string& input)
{
    Package package;
    const Kr::InContextAlias alias("v.int", "--int", "KR_FUZZ_UNSET");
    const Kr::InVariable<std::int32_t> integer(package, "v.int", 1, "", {1, 64});
    const Kr::InVariable<bool> flag(package, "v", false, "");
    const Kr::InVariable<std::string> text(package, "v.text", "", "");

    std::vector<std::string> words;
    std::istringstream lines(input);
    for (std::string line; std::getline(lines, line);)
        words.emplace_back(line.c_str()); // a terminator inside ends the word
    const CommandLine commandLine(words);
    try
    {
        package.start();
        require(integer.getValue() >= 1 && integer.getValue() <= 64);
    }
    catch (const Kr::InVariableEx&)
    {
    }
    checkRemaining();
    std::ostringstream report;
    Kr::InSettings::dumpAll(report);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    if (data[0] % 8 < 7)
        checkValue(data[0] % 8, text);
    else
        checkCommandLine(text);
    return 0;
}

// The option parser and the splitting of sub-options: what they return is consistent with their
// input, they end, and where the system's own functions agree in meaning they agree in result.

#include <base/inOptionParser.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>
#include <vector>

namespace
{

void require(bool holds, const char* what)
{
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

/// Splits the input at null characters.
std::vector<std::string> splitInput(const std::string& input)
{
    std::vector<std::string> texts;
    for (std::size_t from = 0; from <= input.size();)
    {
        const std::size_t to = std::min(input.find('\0', from), input.size());
        texts.push_back(input.substr(from, to - from));
        from = to + 1;
    }
    return texts;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

/// A value is a whole argument or the rest of one.
bool isInside(const char* value, const std::string& argument)
{
    return value >= argument.data() && value <= argument.data() + argument.size();
}

void walk(std::vector<std::string> arguments, const std::string& options, bool furtherValues)
{
    const std::vector<std::string> before = arguments;
    std::vector<char*> argv = pointersTo(arguments);
    const int argc = static_cast<int>(arguments.size());
    std::size_t steps = 1;
    for (const std::string& argument : arguments)
        steps += argument.size() + 1;

    Kr::InOptionParser parser(argc, argv.data(), options.c_str());
    int index = parser.getArgumentIndex();
    for (int option; (option = parser.getOption()) != -1;)
    {
        require(steps-- != 0, "it ends");
        require(parser.getArgumentIndex() >= index, "the index only grows");
        index = parser.getArgumentIndex();
        require(index < argc, "an option's index is an argument's");
        const std::size_t known = options.find(static_cast<char>(option));
        require(option == '?' || known != std::string::npos, "an option is a known letter");
        const char* value = parser.getValue();
        if (value == nullptr)
            continue;
        require(known != std::string::npos && options[known + 1] == ':', "it takes a value");
        require(isInside(value, arguments[static_cast<std::size_t>(index)]), "value of the index");
        while (furtherValues && parser.gotoNextValue() != nullptr)
            require(parser.getValue() == argv[static_cast<std::size_t>(++index)], "next argument");
    }
    require(parser.getArgumentIndex() <= argc, "the end is in the vector");
    require(parser.getOption() == -1, "the end stays");
    require(arguments == before, "the arguments are not changed");
}

/// getopt means something else by a second dash, a missing value and a colon.
bool isCommon(const std::vector<std::string>& arguments)
{
    return std::none_of(arguments.begin(), arguments.end(),
                        [](const std::string& argument)
                        {
                            return argument.compare(0, 2, "--") == 0
                                       ? argument != "--"
                                       : argument.find_first_of(":-", 1) != argument.npos;
                        });
}

void compareWithGetopt(std::vector<std::string> arguments, const std::string& options)
{
    if (!isCommon(arguments))
        return;
    std::vector<char*> argv = pointersTo(arguments);
    const int argc = static_cast<int>(arguments.size());
    Kr::InOptionParser parser(argc, argv.data(), options.c_str());
    const std::string posix = "+:" + options; // stop at the first operand, tell a missing value
    optind = 0;
    for (int expected; (expected = getopt(argc, argv.data(), posix.c_str())) != -1;)
    {
        const int option = parser.getOption();
        if (expected == ':')
        {
            require(option == optopt && parser.getValue() == nullptr, "a missing value is null");
            continue;
        }
        require(option == expected, "the letter is getopt's");
        if (expected != '?')
            require(parser.getValue() == optarg, "the value is getopt's");
    }
    require(parser.getOption() == -1 && parser.getArgumentIndex() == optind, "so is the end");
}

/// Letters, each at most once, each with or without a colon.
std::string makeOptions(const std::string& seed)
{
    std::string options;
    for (const char c : seed)
    {
        const char letter = static_cast<char>('a' + (static_cast<unsigned char>(c) & 0x7f) % 26);
        if (options.find(letter) == std::string::npos)
            options += (c & 0x80) != 0 ? std::string{letter, ':'} : std::string{letter};
    }
    return options;
}

void splitSubOptions(const std::string& text, std::vector<std::string> keys)
{
    std::vector<char*> tokens = pointersTo(keys);
    std::string ours = text;
    std::string theirs = text;
    char* rest = ours.data();
    char* systemRest = theirs.data();
    while (*rest != '\0')
    {
        const char* const start = rest;
        char* value = nullptr;
        char* systemValue = nullptr;
        const int token = Kr::InOptionParser::getSubOption(&rest, tokens.data(), &value);
        require(rest > start && rest <= ours.data() + ours.size(), "each call moves on");
        require(token == getsubopt(&systemRest, tokens.data(), &systemValue), "getsubopt's token");
        require(rest - ours.data() == systemRest - theirs.data(), "getsubopt's rest");
        if (token < 0)
            require(value == start, "an unknown key is handed back");
        else
            require((value == nullptr) == (systemValue == nullptr) &&
                        (value == nullptr || std::strcmp(value, systemValue) == 0),
                    "getsubopt's value");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::vector<std::string> texts =
        splitInput(std::string(reinterpret_cast<const char*>(data), size));
    const std::string options = texts.front();
    texts.front() = "program";
    walk(texts, options, false);
    walk(texts, options, true);
    compareWithGetopt(texts, makeOptions(options));

    std::string list = texts.back();
    texts.pop_back();
    splitSubOptions(list, texts);
    return 0;
}

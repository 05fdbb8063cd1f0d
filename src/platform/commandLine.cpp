#include <platform/commandLine.h>

namespace
{

constexpr char plainCharacters[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                   "0123456789_-+./:@\\";

bool isPlain(std::string_view text)
{
    return !text.empty() && text.find_first_not_of(plainCharacters) == std::string_view::npos;
}

bool isBlank(char c)
{
    return c == ' ' || c == '\t';
}

/// The program's name, up to a blank outside quotes.
const char* splitProgram(const char* line, std::vector<std::string>& arguments)
{
    std::string program;
    bool isQuoted = false;
    for (; *line != '\0' && (isQuoted || !isBlank(*line)); ++line)
    {
        if (*line == '"')
            isQuoted = !isQuoted;
        else
            program += *line;
    }
    arguments.push_back(std::move(program));
    return line;
}

/// Takes the backslashes at `line`, and the quote behind them if it is a character.
const char* takeBackslashes(const char* line, std::string& argument)
{
    std::size_t count = 0;
    for (; *line == '\\'; ++line)
        ++count;
    if (*line != '"')
    {
        argument.append(count, '\\');
        return line;
    }
    argument.append(count / 2, '\\');
    if (count % 2 == 0)
        return line;
    argument += '"';
    return line + 1;
}

const char* splitArgument(const char* line, std::string& argument)
{
    bool isQuoted = false;
    while (*line != '\0' && (isQuoted || !isBlank(*line)))
    {
        if (*line == '\\')
            line = takeBackslashes(line, argument);
        else if (*line != '"')
            argument += *line++;
        else if (isQuoted && line[1] == '"') // two within quotes are one character
        {
            argument += '"';
            line += 2;
        }
        else
        {
            isQuoted = !isQuoted;
            ++line;
        }
    }
    return line;
}

} // namespace

void krAppendProgram(std::string& line, std::string_view program)
{
    line += '"';
    line += program;
    line += '"';
}

void krAppendArgument(std::string& line, std::string_view argument)
{
    line += ' ';
    if (isPlain(argument))
    {
        line += argument;
        return;
    }
    line += '"';
    std::size_t backslashes = 0;
    for (const char c : argument)
    {
        if (c == '"')
            line.append(backslashes + 1, '\\');
        backslashes = c == '\\' ? backslashes + 1 : 0;
        line += c;
    }
    line.append(backslashes, '\\');
    line += '"';
}

std::vector<std::string> krSplitCommandLine(const char* line)
{
    std::vector<std::string> arguments;
    line = splitProgram(line, arguments);
    for (;;)
    {
        while (isBlank(*line))
            ++line;
        if (*line == '\0')
            return arguments;
        std::string argument;
        line = splitArgument(line, argument);
        arguments.push_back(std::move(argument));
    }
}

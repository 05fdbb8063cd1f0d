#include <base/inOptionParser.h>

#include <base/assert.h>
#include <base/internal/errors/fixedText.h>

#include <cassert>
#include <cstring>

namespace Kr
{

namespace
{

/// The last character of a text. An empty text is replaced, so that there is a character before its
/// end too.
const char* lastCharacter(const char* text)
{
    const std::size_t length = std::strlen(text);
    return length != 0 ? text + length - 1 : " ";
}

/// Ends the text at that character and returns the one after it; the end of the text stays.
char* endText(char* at)
{
    if (*at == '\0')
        return at;
    *at = '\0';
    return at + 1;
}

int findToken(char* const* tokens, const char* key)
{
    for (int i = 0; tokens != nullptr && tokens[i] != nullptr; ++i)
        if (std::strcmp(tokens[i], key) == 0)
            return i;
    return -1;
}

} // namespace

InOptionParser::InOptionParser(int argc, char** argv, const char* optionString)
    : _argc(argv != nullptr && argc > 0 ? argc : 0)
    , _argv(argv)
    , _optionString(orEmpty(optionString))
    , _value(nullptr)
    , _argumentIndex(0)
    , _cursor(nullptr)
{
    assert(argc > 0);
    if (_argc != 0)
        gotoArgumentEnd();
}

int InOptionParser::getOption()
{
    _value = nullptr;
    if (_cursor == nullptr)
        return -1;
    ++_cursor;
    if (*_cursor == '\0' && !gotoNextCluster())
    {
        _cursor = nullptr;
        return -1;
    }
    const char* known = std::strchr(_optionString, *_cursor);
    if (known == nullptr)
        return '?';
    const int letter = static_cast<unsigned char>(*_cursor);
    if (known[1] == ':')
        takeValue();
    return letter;
}

const char* InOptionParser::gotoNextValue()
{
    if (_value == nullptr)
        return nullptr;
    const bool exists = _argumentIndex + 1 < _argc;
    _value = exists ? getArgument(++_argumentIndex) : nullptr;
    gotoArgumentEnd();
    return _value;
}

int InOptionParser::getSubOption(char** option, char* const* tokens, char** value)
{
    KR_ASSERT(option != nullptr && *option != nullptr && value != nullptr);
    char* const key = *option;
    char* end = key + std::strcspn(key, ",=");
    *value = nullptr;
    if (*end == '=')
    {
        *value = endText(end);
        end = *value + std::strcspn(*value, ",");
    }
    *option = endText(end);
    const int token = findToken(tokens, key);
    if (token < 0)
        *value = key;
    return token;
}

const char* InOptionParser::getArgument(std::int32_t index) const
{
    return _argv[index] != nullptr ? _argv[index] : "";
}

/// Puts the cursor on the first letter of the next argument. False when the options end there; the
/// index is then that of the first argument that is not an option.
bool InOptionParser::gotoNextCluster()
{
    ++_argumentIndex;
    if (_argumentIndex >= _argc)
        return false;
    const char* argument = getArgument(_argumentIndex);
    if (argument[0] != '-' || argument[1] == '\0')
        return false;
    if (argument[1] == '-')
    {
        ++_argumentIndex;
        return false;
    }
    _cursor = argument + 1;
    return true;
}

/// Takes the rest of the argument as the value, or else the whole of the next one.
void InOptionParser::takeValue()
{
    if (_cursor[1] != '\0')
        _value = _cursor + 1;
    else if (_argumentIndex + 1 < _argc)
        _value = getArgument(++_argumentIndex);
    gotoArgumentEnd();
}

void InOptionParser::gotoArgumentEnd()
{
    _cursor = lastCharacter(getArgument(_argumentIndex));
}

} // namespace Kr

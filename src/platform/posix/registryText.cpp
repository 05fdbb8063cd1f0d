#include <platform/posix/registryText.h>

#include <platform/posix/wideText.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>

namespace
{

constexpr std::string_view header = "KRbase registry 1\n";
constexpr std::string_view footer = "end\n";
constexpr char hexDigits[] = "0123456789abcdef";

// --- the data of texts and integers -------------------------------------------------------------

std::string toData(const std::u16string& wide)
{
    return {reinterpret_cast<const char*>(wide.data()), wide.size() * sizeof(char16_t)};
}

/// The data of texts, each with its terminator and, behind a list, one more.
bool joinTexts(const std::vector<std::string>& texts, bool isList, std::string& data)
{
    std::u16string wide;
    for (const std::string& text : texts)
    {
        if (!krWiden(text, wide))
            return false;
        wide += u'\0';
    }
    if (isList)
        wide += u'\0';
    data = toData(wide);
    return true;
}

/// The reverse; false for data that does not come back the same.
bool splitTexts(const std::string& data, bool isList, std::vector<std::string>& texts)
{
    std::u16string wide(data.size() / sizeof(char16_t), u'\0');
    std::string narrow;
    std::string back;
    std::memcpy(wide.data(), data.data(), wide.size() * sizeof(char16_t));
    if (!krNarrow(wide, narrow))
        return false;
    const std::size_t end = narrow.size() - (isList && !narrow.empty() ? 1 : 0);
    for (std::size_t begin = 0; begin < end; begin += texts.back().size() + 1)
        texts.push_back(narrow.substr(begin, narrow.find('\0', begin) - begin));
    return (isList || texts.size() == 1) && joinTexts(texts, isList, back) && back == data;
}

template <class Integer>
Integer toInteger(const std::string& data)
{
    Integer value = 0;
    std::memcpy(&value, data.data(), sizeof value);
    return value;
}

// --- writing ------------------------------------------------------------------------------------

void putHex(std::string& line, unsigned char byte)
{
    line += hexDigits[byte >> 4U];
    line += hexDigits[byte & 0xFU];
}

void putHex(std::string& line, const std::string& data)
{
    for (const char c : data)
        putHex(line, static_cast<unsigned char>(c));
}

void putQuoted(std::string& line, const std::string& text)
{
    line += '"';
    for (const char c : text)
    {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\')
            (line += '\\') += c;
        else if (c == '\n')
            line += "\\n";
        else if (byte < 0x20 || byte == 0x7F)
            putHex(line += "\\x", byte);
        else
            line += c;
    }
    line += '"';
}

/// Writes the data in the form of its type, if it is well-formed for that.
bool putTyped(std::string& line, const KrRegistryValue& value)
{
    std::vector<std::string> texts;
    const bool isList = value.type == REG_MULTI_SZ;
    if ((isList || value.type == REG_SZ) && splitTexts(value.data, isList, texts))
    {
        line += isList ? "texts" : "text";
        for (const std::string& text : texts)
            putQuoted(line += ' ', text);
    }
    else if (value.type == REG_DWORD && value.data.size() == sizeof(std::int32_t))
        line.append("int32 ").append(std::to_string(toInteger<std::int32_t>(value.data)));
    else if (value.type == REG_QWORD && value.data.size() == sizeof(std::int64_t))
        line.append("int64 ").append(std::to_string(toInteger<std::int64_t>(value.data)));
    else if (value.type == REG_BINARY)
        putHex(line += "bytes ", value.data);
    else
        return false;
    return true;
}

// --- reading ------------------------------------------------------------------------------------

/// Takes one thing after the other off the begin of a text.
class Cursor
{
public:
    explicit Cursor(std::string_view rest)
        : _rest(rest)
    {
    }

    bool isAtEnd() const { return _rest.empty(); }

    bool take(std::string_view word)
    {
        const bool found = _rest.substr(0, word.size()) == word;
        if (found)
            _rest.remove_prefix(word.size());
        return found;
    }

    template <class Integer>
    bool takeInteger(Integer& value)
    {
        const char* const end = _rest.data() + _rest.size();
        const auto [rest, error] = std::from_chars(_rest.data(), end, value);
        _rest.remove_prefix(static_cast<std::size_t>(rest - _rest.data()));
        return error == std::errc();
    }

    /// As the data of a value.
    template <class Integer>
    bool takeInteger(std::string& data)
    {
        Integer value = 0;
        const bool found = takeInteger(value);
        data.assign(reinterpret_cast<const char*>(&value), sizeof value);
        return found;
    }

    bool takeHexDigits(std::string& data)
    {
        for (char byte = 0; !_rest.empty(); data += byte)
            if (!takeHexByte(byte))
                return false;
        return true;
    }

    bool takeQuoted(std::string& text)
    {
        if (!take("\""))
            return false;
        while (!_rest.empty() && _rest.front() != '"')
        {
            const std::size_t plain = std::min(_rest.find_first_of("\"\\"), _rest.size());
            text.append(_rest.substr(0, plain));
            _rest.remove_prefix(plain);
            if (take("\\") && !takeEscaped(text))
                return false;
        }
        std::u16string wide;
        return take("\"") && krWiden(text, wide);
    }

private:
    bool takeHexByte(char& byte)
    {
        unsigned value = 0;
        const std::string_view digits = _rest.substr(0, 2);
        const char* const end = digits.data() + digits.size();
        const auto [rest, error] = std::from_chars(digits.data(), end, value, 16);
        byte = static_cast<char>(value);
        const bool found = error == std::errc() && rest == end && digits.size() == 2;
        _rest.remove_prefix(digits.size());
        return found;
    }

    bool takeEscaped(std::string& text)
    {
        char c = '\n';
        if (take("x"))
        {
            if (!takeHexByte(c))
                return false;
        }
        else if (!take("n"))
        {
            if (_rest.empty() || (_rest.front() != '"' && _rest.front() != '\\'))
                return false;
            c = _rest.front();
            _rest.remove_prefix(1);
        }
        text += c;
        return true;
    }

    std::string_view _rest;
};

bool takeTexts(Cursor& cursor, bool isList, std::string& data)
{
    std::vector<std::string> texts;
    while (cursor.take(" "))
        if (!cursor.takeQuoted(texts.emplace_back()))
            return false;
    return (isList || texts.size() == 1) && joinTexts(texts, isList, data);
}

bool takeData(Cursor& cursor, KrRegistryValue& value)
{
    const auto is = [&](std::string_view kind, DWORD type)
    {
        value.type = type;
        return cursor.take(kind);
    };
    if (is("texts", REG_MULTI_SZ))
        return takeTexts(cursor, true, value.data);
    if (is("text", REG_SZ))
        return takeTexts(cursor, false, value.data);
    if (is("int32 ", REG_DWORD))
        return cursor.takeInteger<std::int32_t>(value.data);
    if (is("int64 ", REG_QWORD))
        return cursor.takeInteger<std::int64_t>(value.data);
    if (is("bytes ", REG_BINARY))
        return cursor.takeHexDigits(value.data);
    return cursor.take("raw ") && cursor.takeInteger(value.type) && cursor.take(" ") &&
           cursor.takeHexDigits(value.data);
}

bool parseLine(std::string_view line, KrRegistryValue& value)
{
    Cursor cursor(line);
    return cursor.takeQuoted(value.name) && cursor.take(" ") && takeData(cursor, value) &&
           cursor.isAtEnd();
}

} // namespace

std::size_t krParseRegistry(std::string_view text, KrRegistryValues& values)
{
    std::size_t line = 1;
    if (text.substr(0, header.size()) != header)
        return line;
    for (text.remove_prefix(header.size()); text != footer; ++line)
    {
        const std::size_t length = text.find('\n');
        if (length == text.npos ||
            !parseLine(text.substr(0, length), values.emplace_back(KrRegistryValue{})))
            return line + 1;
        text.remove_prefix(length + 1);
    }
    return 0;
}

std::string krFormatRegistry(const KrRegistryValues& values)
{
    std::string text(header);
    for (const KrRegistryValue& value : values)
    {
        putQuoted(text, value.name);
        text += ' ';
        if (!putTyped(text, value))
            putHex(text.append("raw ").append(std::to_string(value.type)).append(" "), value.data);
        text += '\n';
    }
    return text.append(footer);
}

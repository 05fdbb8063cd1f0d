#pragma once

/// @file
/// Texts as XML takes them.

#include <string>
#include <string_view>

namespace Kr
{

class TestXml
{
public:
    /// The text for an attribute's value or an element's content. Bytes that are no UTF-8, and
    /// characters that XML 1.0 forbids, come out as "\x1b".
    static std::string escape(std::string_view text);

private:
    /// The length of the character that the text begins with, 0 if XML has none such.
    static std::size_t getCharacterLength(std::string_view text) noexcept;
};

} // namespace Kr

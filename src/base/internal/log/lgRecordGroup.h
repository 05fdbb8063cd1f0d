#pragma once

/// @file
/// Internal to the library: how a message names its group. A queue's entry has no place for it, so
/// it stands at the head of the text, between two unit separators. A text that does not begin with
/// one has no group.

#include <base/lgStream.h>

#include <algorithm>
#include <string_view>

namespace Kr
{

class LgRecordGroup
{
public:
    static void write(LgStream& stream, const char* name)
    {
        stream << separator << name << separator;
    }

    /// Takes the group's name off the head of the text. A full ring may have cut all that follows.
    static void split(std::string_view& text, std::string_view& group)
    {
        if (text.empty() || text.front() != separator)
            return;
        const std::size_t end = std::min(text.find(separator, 1), text.size());
        group = text.substr(1, end - 1);
        text.remove_prefix(std::min(end + 1, text.size()));
    }

private:
    static constexpr char separator = '\x1f';
};

} // namespace Kr

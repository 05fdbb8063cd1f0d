#pragma once

/// @file
/// The values of a registry key as the text of a file, on a POSIX host. People can read and mend
/// it:
/// @code
/// KRbase registry 1
/// "Title" text "untitled"
/// "Recent" texts "a.scene" "b.scene"
/// "Width" int32 1280
/// "Seed" int64 -5
/// "Layout" bytes 00ff10
/// "Other" raw 2 410000
/// end
/// @endcode
/// Quoted texts are UTF-8; `\"`, `\\`, `\n` and `\x1f` stand for what cannot be written down. `raw`
/// is whatever is not well-formed for its type, by the type's number. The last line tells a whole
/// file from a part of one.

#include <platform/platform.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

struct KrRegistryValue
{
    std::string name; ///< in UTF-8
    DWORD type;
    std::string data; ///< as the calls take and give it
};

using KrRegistryValues = std::vector<KrRegistryValue>;

/// Reads a file's text. Returns 0, or the number of the first line that is malformed.
std::size_t krParseRegistry(std::string_view text, KrRegistryValues& values);
std::string krFormatRegistry(const KrRegistryValues& values);

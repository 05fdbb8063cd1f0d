#pragma once

/// @file
/// Internal to the library: null texts.

namespace Kr
{

/// The text, or the empty one in place of null.
constexpr const char* orEmpty(const char* text) noexcept
{
    return text != nullptr ? text : "";
}

} // namespace Kr

#pragma once

/// @file
/// The names of types, as people write them.

#include <cstddef>
#include <string>

namespace Kr
{

/// The name that `type_info::name()` stands for (`Kr::InEx::ExDependencyCycle`), or the text itself
/// when it stands for none; empty for null.
std::string demangle(const char* name);

/// The same without allocating, for names made of namespaces and classes only; other names (of
/// templates, of a function's own classes) are copied as they are. What does not fit is cut.
/// @param size the size of `text`, its terminator included; at least 1
/// @return `text`
const char* demanglePlain(const char* name, char* text, std::size_t size) noexcept;

} // namespace Kr

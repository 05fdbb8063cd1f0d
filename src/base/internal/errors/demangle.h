#pragma once

/// @file
/// Internal to the library: the names of types as people write them.

#include <cstdlib>
#include <cxxabi.h>
#include <memory>
#include <string>

namespace Kr
{

/// What `type_info::name()` stands for, "Kr::InSingleton<Camera>"; a name that is no type's stays
/// as it is.
inline std::string demangle(const char* typeName)
{
    int status = 0;
    const std::unique_ptr<char, void (*)(void*)> text(
        abi::__cxa_demangle(typeName, nullptr, nullptr, &status), &std::free);
    return text != nullptr ? text.get() : typeName;
}

} // namespace Kr

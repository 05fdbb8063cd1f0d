#pragma once

/// @file
/// What goes wrong with libraries that are loaded at run time. The names in a reason are cut at 256
/// characters; what stands for the system is the system's own text.
/// @code{.cpp}
/// #include <base/osSharedLib.h>
///
/// void loadEffects(Kr::OsSharedLib& effects)
/// {
///     try
///     {
///         effects.load("effects");
///     }
///     catch (const Kr::OsSharedLibEx& error)
///     {
///         std::cerr << error.getReason() << '\n';
///     }
/// }
/// @endcode

#include <base/exBase.h>

namespace Kr
{

class KR_BASE_API OsSharedLibEx : public ExBase
{
public:
    class ExNotLoaded;
    class ExNoSymbol;

protected:
    OsSharedLibEx(const char* file, int line) noexcept;
};

/// "Cannot load the library '%.*s': " and the system's reason.
class KR_BASE_API OsSharedLibEx::ExNotLoaded
    : public ExConcrete<OsSharedLibEx::ExNotLoaded, std::runtime_error, OsSharedLibEx>
{
public:
    ExNotLoaded(const char* file, int line, const char* library, const char* systemReason);
};

/// "The library '%.*s' has no symbol '%.*s': " and the system's reason.
class KR_BASE_API OsSharedLibEx::ExNoSymbol
    : public ExConcrete<OsSharedLibEx::ExNoSymbol, std::runtime_error, OsSharedLibEx>
{
public:
    ExNoSymbol(const char* file, int line, const char* library, const char* symbol,
               const char* systemReason);
};

} // namespace Kr

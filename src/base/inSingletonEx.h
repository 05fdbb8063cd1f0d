#pragma once

/// @file
/// What the misuse of a singleton raises. A reason is the singleton's run-time type name, then the
/// text of the condition and a full stop.
/// @code
/// try
/// {
///     render(); // asks for the camera
/// }
/// catch (const Kr::InSingletonEx::ExNotInitialized& error)
/// {
///     std::cerr << error.getReason() << '\n'; // "6Camera is not initialized."
/// }
/// @endcode

#include <base/inEx.h>

namespace Kr
{

class KR_BASE_API InSingletonEx : public InEx
{
public:
    class ExNotInitialized;
    class ExAlreadyInitialized;
    class ExAlreadyDestroyed;

protected:
    /// Sets the reason to "%s %s.": the class name and the text.
    InSingletonEx(const char* file, int line, const char* className, const char* text) noexcept;
};

/// "is not initialized": used before `initialize` or after `destroy`.
class KR_BASE_API InSingletonEx::ExNotInitialized
    : public ExConcrete<InSingletonEx::ExNotInitialized, std::runtime_error, InSingletonEx>
{
public:
    ExNotInitialized(const char* file, int line, const char* className);
};

/// "has already been initialized": a second `initialize`.
class KR_BASE_API InSingletonEx::ExAlreadyInitialized
    : public ExConcrete<InSingletonEx::ExAlreadyInitialized, std::runtime_error, InSingletonEx>
{
public:
    ExAlreadyInitialized(const char* file, int line, const char* className);
};

/// "has already been destroyed": `initialize` or `destroy` after `destroy`.
class KR_BASE_API InSingletonEx::ExAlreadyDestroyed
    : public ExConcrete<InSingletonEx::ExAlreadyDestroyed, std::runtime_error, InSingletonEx>
{
public:
    ExAlreadyDestroyed(const char* file, int line, const char* className);
};

} // namespace Kr

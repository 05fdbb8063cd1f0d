#pragma once

/// @file
/// What is wrong with the settings that someone gave. Every text in a
/// reason is cut at 256 characters; a null one counts as empty.
/// @code
/// try
/// {
///     const Kr::InInitGuard guard(argc, argv);
///     render();
/// }
/// catch (const Kr::InVariableEx& error)
/// {
///     std::cerr << error.getReason() << '\n';
/// }
/// @endcode

#include <base/inEx.h>

namespace Kr
{

class KR_BASE_API InVariableEx : public InEx
{
public:
    class ExMalformedValue;
    class ExMissingValue;
    class ExUnknownOption;

protected:
    InVariableEx(const char* file, int line) noexcept;
};

/// "Variable '%.*s': the value '%.*s' of %.*s is malformed, expected %.*s.": the handle, the text,
/// the source and the form that the variable takes.
class KR_BASE_API InVariableEx::ExMalformedValue
    : public ExConcrete<InVariableEx::ExMalformedValue, std::runtime_error, InVariableEx>
{
public:
    ExMalformedValue(const char* file, int line, const char* handle, const char* text,
                     const char* source, const char* expected);
};

/// "Variable '%.*s': %.*s needs a value, %.*s.": the handle, the option and the form that the
/// variable takes.
class KR_BASE_API InVariableEx::ExMissingValue
    : public ExConcrete<InVariableEx::ExMissingValue, std::runtime_error, InVariableEx>
{
public:
    ExMissingValue(const char* file, int line, const char* handle, const char* source,
                   const char* expected);
};

/// "Unknown option '%.*s'.", or where the option is much like a known one, "Unknown option '%.*s':
/// did you mean '%.*s'?": see `InSettings::refuseUnknownOptions`. A null `nearest` is none.
class KR_BASE_API InVariableEx::ExUnknownOption
    : public ExConcrete<InVariableEx::ExUnknownOption, std::runtime_error, InVariableEx>
{
public:
    ExUnknownOption(const char* file, int line, const char* option, const char* nearest);
};

} // namespace Kr

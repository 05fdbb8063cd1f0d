#pragma once

/// @file
/// The exceptions of the logger.
/// @code
/// try
/// {
///     std::cout << Kr::LgTypes::getLevelFromString("Verbose");
/// }
/// catch (const Kr::LgEx::InvalidLevelString& error)
/// {
///     std::cerr << error.getReason() << '\n'; // Invalid level string specified: Verbose
/// }
/// @endcode

#include <base/exBase.h>

namespace Kr
{

class KR_BASE_API LgEx : public ExBase
{
public:
    class InvalidLevelString;

protected:
    using ExBase::ExBase;
};

/// "Invalid level string specified: " and the text that is no level's name.
class KR_BASE_API LgEx::InvalidLevelString
    : public ExConcrete<LgEx::InvalidLevelString, std::runtime_error, LgEx>
{
public:
    InvalidLevelString(const char* file, int line, const char* text);
};

} // namespace Kr

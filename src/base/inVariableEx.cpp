#include <base/inVariableEx.h>

#include <base/internal/errors/fixedText.h>

#include <cstdio>

namespace Kr
{

namespace
{

constexpr int cut = 256;
constexpr std::size_t textSize = 4 * cut + 128; // four texts and the words around them

} // namespace

InVariableEx::InVariableEx(const char* file, int line) noexcept
    : InEx(file, line)
{
}

InVariableEx::ExMalformedValue::ExMalformedValue(const char* file, int line, const char* handle,
                                                 const char* text, const char* source,
                                                 const char* expected)
    : ExConcrete(file, line)
{
    char reason[textSize];
    std::snprintf(reason, sizeof reason,
                  "Variable '%.*s': the value '%.*s' of %.*s is malformed, expected %.*s.", cut,
                  orEmpty(handle), cut, orEmpty(text), cut, orEmpty(source), cut,
                  orEmpty(expected));
    setReason(reason);
}

InVariableEx::ExMissingValue::ExMissingValue(const char* file, int line, const char* handle,
                                             const char* source, const char* expected)
    : ExConcrete(file, line)
{
    char reason[textSize];
    std::snprintf(reason, sizeof reason, "Variable '%.*s': %.*s needs a value, %.*s.", cut,
                  orEmpty(handle), cut, orEmpty(source), cut, orEmpty(expected));
    setReason(reason);
}

InVariableEx::ExUnknownOption::ExUnknownOption(const char* file, int line, const char* option,
                                               const char* nearest)
    : ExConcrete(file, line)
{
    char reason[textSize];
    if (nearest != nullptr)
        std::snprintf(reason, sizeof reason, "Unknown option '%.*s': did you mean '%.*s'?", cut,
                      orEmpty(option), cut, nearest);
    else
        std::snprintf(reason, sizeof reason, "Unknown option '%.*s'.", cut, orEmpty(option));
    setReason(reason);
}

} // namespace Kr

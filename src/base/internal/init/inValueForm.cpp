#include <base/internal/init/inValueForm.h>

#include <base/internal/init/inDecimal.h>

#include <charconv>

namespace Kr
{

namespace
{

bool equalsIgnoringCase(std::string_view text, std::string_view lowerCase)
{
    if (text.size() != lowerCase.size())
        return false;
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        const bool isUpper = text[i] >= 'A' && text[i] <= 'Z';
        if ((isUpper ? text[i] - 'A' + 'a' : text[i]) != lowerCase[i])
            return false;
    }
    return true;
}

/// Whether the whole text is a number of the type.
template <class T>
bool parseNumber(const char* begin, const char* end, T& value)
{
    if constexpr (std::is_floating_point_v<T>)
    {
        const auto number = InDecimal<T>::parse(begin, end);
        value = number.value;
        return number.end == end && number.end != begin && number.range != InDecimalRange::TooLarge;
    }
    else
    {
        const std::from_chars_result result = std::from_chars(begin, end, value);
        return result.ec == std::errc() && result.ptr == end;
    }
}

} // namespace

template <class T>
InNumberForm<T>::InNumberForm()
    : InNumberForm(std::numeric_limits<T>::lowest(), std::numeric_limits<T>::max())
{
}

template <class T>
InNumberForm<T>::InNumberForm(T minimum, T maximum)
    : _minimum(minimum)
    , _maximum(maximum)
{
}

template <class T>
bool InNumberForm<T>::isValid(T value) const
{
    return value >= _minimum && value <= _maximum;
}

template <class T>
bool InNumberForm<T>::parse(std::string_view text, T& value) const
{
    T parsed{};
    if (!parseNumber(text.data(), text.data() + text.size(), parsed) || !isValid(parsed))
        return false;
    value = parsed;
    return true;
}

template <class T>
std::string InNumberForm<T>::write(T value) const
{
    char text[32]; // the longest number needs 24 characters
    return std::string(text, std::to_chars(text, text + sizeof text, value).ptr);
}

template <class T>
std::string InNumberForm<T>::getExpected() const
{
    const bool hasMinimum = _minimum != std::numeric_limits<T>::lowest();
    const bool hasMaximum = _maximum != std::numeric_limits<T>::max();
    std::string expected = std::is_integral_v<T> ? "an integer" : "a number";
    // An integer's limits are always worth saying: they are where the type ends.
    if (std::is_integral_v<T> || (hasMinimum && hasMaximum))
        return expected + " from " + write(_minimum) + " to " + write(_maximum);
    if (hasMinimum)
        return expected + " of at least " + write(_minimum);
    if (hasMaximum)
        return expected + " of at most " + write(_maximum);
    return expected;
}

template class InNumberForm<signed char>;
template class InNumberForm<unsigned char>;
template class InNumberForm<short>;
template class InNumberForm<unsigned short>;
template class InNumberForm<int>;
template class InNumberForm<unsigned int>;
template class InNumberForm<long>;
template class InNumberForm<unsigned long>;
template class InNumberForm<long long>;
template class InNumberForm<unsigned long long>;
template class InNumberForm<float>;
template class InNumberForm<double>;

bool InValueForm<bool>::isValid(bool /*value*/) const
{
    return true;
}

bool InValueForm<bool>::parse(std::string_view text, bool& value) const
{
    constexpr struct
    {
        std::string_view text;
        bool value;
    } words[] = {{"true", true},   {"yes", true}, {"on", true},   {"1", true},
                 {"false", false}, {"no", false}, {"off", false}, {"0", false}};
    for (const auto& word : words)
    {
        if (!equalsIgnoringCase(text, word.text))
            continue;
        value = word.value;
        return true;
    }
    return false;
}

std::string InValueForm<bool>::write(bool value) const
{
    return value ? "true" : "false";
}

std::string InValueForm<bool>::getExpected() const
{
    return "true, yes, on, 1, false, no, off or 0";
}

bool InValueForm<std::string>::isValid(const std::string& /*value*/) const
{
    return true;
}

bool InValueForm<std::string>::parse(std::string_view text, std::string& value) const
{
    value = text;
    return true;
}

std::string InValueForm<std::string>::write(const std::string& value) const
{
    return value;
}

std::string InValueForm<std::string>::getExpected() const
{
    return "a text";
}

} // namespace Kr

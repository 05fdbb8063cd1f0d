#pragma once

/// @file
/// How the value of an initialisation variable is written as text.
/// @code
/// const Kr::InValueForm<int> samples(1, 64);
/// int count = 0;
/// if (!samples.parse("8", count))
///     std::cerr << "expected " << samples.getExpected() << '\n'; // an integer from 1 to 64
/// @endcode
/// One form serves all sources of a value, so a text means the same on the command line and in the
/// environment. The whole text must be the value: blanks, a leading "+", trailing characters and
/// the empty text (except as text) are malformed, whatever the locale.
///
/// | type | texts |
/// |---|---|
/// | `bool` | true, yes, on, 1, false, no, off, 0; the case does not matter |
/// | integers of every size (but the character types) | decimal, within the range |
/// | `float`, `double` | decimal, with an exponent or not, within the range |
/// | `std::string` | any |
/// | enumeration | one of the names, in their case |
///
/// "inf" is a number when the range has it, "nan" never. What is too small for a `float` or a
/// `double` is 0, what is too large is malformed.
///
/// `write` gives a text that `parse` takes back to the same value. Forms may be shared by threads.

#include <base/krBaseApi.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace Kr
{

/// What an enumeration's value is called.
template <class E>
struct InEnumName
{
    const char* name; ///< not copied
    E value;
};

/// The form of an enumeration: its table of names. When several names stand for one value, the
/// first is written.
template <class E>
class InEnumForm
{
public:
    InEnumForm() = delete; // a variable of an enumeration cannot do without its names
    InEnumForm(std::initializer_list<InEnumName<E>> names)
        : _names(names)
    {
    }

    /// Whether the value is one that the form writes.
    bool isValid(E value) const { return getName(value) != nullptr; }
    /// Sets the value, or leaves it as it is and returns false when the text is malformed.
    bool parse(std::string_view text, E& value) const;
    std::string write(E value) const;
    /// What `parse` expects, in words.
    std::string getExpected() const;

private:
    const char* getName(E value) const;

    std::vector<InEnumName<E>> _names;
};

/// The form of a number: decimal, within an inclusive range. Without a range every finite value of
/// the type is valid.
template <class T>
class InNumberForm
{
public:
    InNumberForm();
    InNumberForm(T minimum, T maximum);

    bool isValid(T value) const;
    bool parse(std::string_view text, T& value) const;
    std::string write(T value) const;
    std::string getExpected() const;

private:
    T _minimum;
    T _maximum;
};

extern template class KR_BASE_API InNumberForm<signed char>;
extern template class KR_BASE_API InNumberForm<unsigned char>;
extern template class KR_BASE_API InNumberForm<short>;
extern template class KR_BASE_API InNumberForm<unsigned short>;
extern template class KR_BASE_API InNumberForm<int>;
extern template class KR_BASE_API InNumberForm<unsigned int>;
extern template class KR_BASE_API InNumberForm<long>;
extern template class KR_BASE_API InNumberForm<unsigned long>;
extern template class KR_BASE_API InNumberForm<long long>;
extern template class KR_BASE_API InNumberForm<unsigned long long>;
extern template class KR_BASE_API InNumberForm<float>;
extern template class KR_BASE_API InNumberForm<double>;

/// The types of numbers that a variable can have.
template <class T>
constexpr bool inIsNumber = (std::is_integral_v<T> || std::is_same_v<T, float> ||
                             std::is_same_v<T, double>)&&!std::is_same_v<T, bool> &&
                            !std::is_same_v<T, char> && !std::is_same_v<T, wchar_t> &&
                            !std::is_same_v<T, char16_t> && !std::is_same_v<T, char32_t>;

/// The form of a type: see the table above.
template <class T>
class InValueForm : public std::conditional_t<std::is_enum_v<T>, InEnumForm<T>, InNumberForm<T>>
{
    static_assert(std::is_enum_v<T> || inIsNumber<T>,
                  "a variable is a bool, an integer, a float, a double, a std::string or an "
                  "enumeration");
    using Base = std::conditional_t<std::is_enum_v<T>, InEnumForm<T>, InNumberForm<T>>;

public:
    using Base::Base;
};

template <>
class KR_BASE_API InValueForm<bool>
{
public:
    bool isValid(bool value) const;
    bool parse(std::string_view text, bool& value) const;
    std::string write(bool value) const;
    std::string getExpected() const;
};

template <>
class KR_BASE_API InValueForm<std::string>
{
public:
    bool isValid(const std::string& value) const;
    bool parse(std::string_view text, std::string& value) const;
    std::string write(const std::string& value) const;
    std::string getExpected() const;
};

// --- enumerations -------------------------------------------------------------------------------

template <class E>
const char* InEnumForm<E>::getName(E value) const
{
    for (const InEnumName<E>& entry : _names)
        if (entry.value == value)
            return entry.name;
    return nullptr;
}

template <class E>
bool InEnumForm<E>::parse(std::string_view text, E& value) const
{
    for (const InEnumName<E>& entry : _names)
    {
        if (text != entry.name)
            continue;
        value = entry.value;
        return true;
    }
    return false;
}

template <class E>
std::string InEnumForm<E>::write(E value) const
{
    const char* const name = getName(value);
    if (name != nullptr)
        return name;
    return "#" + std::to_string(static_cast<std::underlying_type_t<E>>(value));
}

template <class E>
std::string InEnumForm<E>::getExpected() const
{
    std::string expected = "one of";
    for (const InEnumName<E>& entry : _names)
        expected.append(&entry == _names.data() ? " " : ", ").append(entry.name);
    return expected;
}

} // namespace Kr

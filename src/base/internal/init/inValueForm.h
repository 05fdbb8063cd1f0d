#pragma once

/// @file
/// How the value of an initialisation variable is written as text.
/// @code
/// const Kr::InValueForm<std::int32_t> samples(1, 64);
/// std::int32_t count = 0;
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
/// | `std::int32_t`, `std::uint32_t`, `std::int64_t`, `std::uint64_t` | decimal, within the range |
/// | `double` | decimal, with an exponent or not, within the range |
/// | `std::string` | any |
/// | enumeration | one of the names, in their case |
///
/// "inf" is a `double` when the range has it, "nan" never.
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
class InValueForm
{
    static_assert(std::is_enum_v<E>, "a variable is a bool, a 32- or 64-bit integer, a double, a "
                                     "std::string or an enumeration");

public:
    InValueForm() = delete; // a variable of an enumeration cannot do without its names
    InValueForm(std::initializer_list<InEnumName<E>> names)
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
    InNumberForm() = default;
    InNumberForm(T minimum, T maximum)
        : _minimum(minimum)
        , _maximum(maximum)
    {
    }

    bool isValid(T value) const { return value >= _minimum && value <= _maximum; }
    bool parse(std::string_view text, T& value) const;
    std::string write(T value) const;
    std::string getExpected() const;

private:
    T _minimum = std::numeric_limits<T>::lowest();
    T _maximum = std::numeric_limits<T>::max();
};

extern template class KR_BASE_API InNumberForm<std::int32_t>;
extern template class KR_BASE_API InNumberForm<std::uint32_t>;
extern template class KR_BASE_API InNumberForm<std::int64_t>;
extern template class KR_BASE_API InNumberForm<std::uint64_t>;
extern template class KR_BASE_API InNumberForm<double>;

template <>
class InValueForm<std::int32_t> : public InNumberForm<std::int32_t>
{
public:
    using InNumberForm::InNumberForm;
};

template <>
class InValueForm<std::uint32_t> : public InNumberForm<std::uint32_t>
{
public:
    using InNumberForm::InNumberForm;
};

template <>
class InValueForm<std::int64_t> : public InNumberForm<std::int64_t>
{
public:
    using InNumberForm::InNumberForm;
};

template <>
class InValueForm<std::uint64_t> : public InNumberForm<std::uint64_t>
{
public:
    using InNumberForm::InNumberForm;
};

template <>
class InValueForm<double> : public InNumberForm<double>
{
public:
    using InNumberForm::InNumberForm;
};

template <>
class KR_BASE_API InValueForm<bool>
{
public:
    bool isValid(bool) const { return true; }
    bool parse(std::string_view text, bool& value) const;
    std::string write(bool value) const;
    std::string getExpected() const;
};

template <>
class KR_BASE_API InValueForm<std::string>
{
public:
    bool isValid(const std::string&) const { return true; }
    bool parse(std::string_view text, std::string& value) const;
    std::string write(const std::string& value) const;
    std::string getExpected() const;
};

// --- enumerations -------------------------------------------------------------------------------

template <class E>
const char* InValueForm<E>::getName(E value) const
{
    for (const InEnumName<E>& entry : _names)
        if (entry.value == value)
            return entry.name;
    return nullptr;
}

template <class E>
bool InValueForm<E>::parse(std::string_view text, E& value) const
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
std::string InValueForm<E>::write(E value) const
{
    const char* const name = getName(value);
    if (name != nullptr)
        return name;
    return "#" + std::to_string(static_cast<std::underlying_type_t<E>>(value));
}

template <class E>
std::string InValueForm<E>::getExpected() const
{
    std::string expected = "one of";
    for (const InEnumName<E>& entry : _names)
        expected.append(&entry == _names.data() ? " " : ", ").append(entry.name);
    return expected;
}

} // namespace Kr

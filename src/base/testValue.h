#pragma once

/// @file
/// Values as a failed check shows them.
/// @code
/// const std::vector<int> widths{640, 1280};
/// std::cout << Kr::TestValue::describe(widths) << '\n'; // [640, 1280]
/// std::cout << Kr::TestValue::describe("a\tb") << '\n'; // "a\tb"
/// @endcode
/// Numbers are written so that different ones look different, texts are quoted, and sequences show
/// their elements. Everything else is written with its operator `<<`; a type without one shows its
/// name only.

#include <base/krBaseApi.h>

#include <iterator>
#include <sstream>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>
#include <utility>

namespace Kr
{

/// What there is to know about a type before its values can be shown.
struct TestValueKinds
{
    /// Standard strings and views, and C strings, which may be null.
    template <class T>
    static constexpr bool isText =
        std::is_convertible_v<const T&, std::string_view> ||
        std::is_same_v<std::decay_t<T>, char*> || std::is_same_v<std::decay_t<T>, const char*>;

    /// The integers, of which characters are none.
    template <class T>
    static constexpr bool isInteger =
        std::is_integral_v<T> && !std::is_same_v<T, bool> && !std::is_same_v<T, char>;

    template <class T, class = void>
    struct Streamable : std::false_type
    {
    };
    template <class T>
    struct Streamable<
        T, std::void_t<decltype(std::declval<std::ostream&>() << std::declval<const T&>())>>
        : std::true_type
    {
    };

    template <class T, class = void>
    struct Iterable : std::false_type
    {
    };
    template <class T>
    struct Iterable<T, std::void_t<decltype(std::begin(std::declval<const T&>())),
                                   decltype(std::end(std::declval<const T&>()))>> : std::true_type
    {
    };
};

/// The texts of the basic types. For `TestValue`.
class KR_BASE_API TestText
{
public:
    static std::string describeCharacter(char value);
    static std::string describeSigned(long long value);
    static std::string describeUnsigned(unsigned long long value);
    static std::string describeFloat(float value);
    static std::string describeDouble(double value);
    static std::string describeText(const char* text);
    static std::string describeText(std::string_view text);
    static std::string describeAddress(const volatile void* address);
    static std::string describeType(const std::type_info& type); ///< its name in parentheses

    /// The values of a comparison, in two lines.
    static std::string describeBoth(const std::string& left, const std::string& right);
};

class TestValue
{
public:
    template <class T>
    static std::string describe(const T& value)
    {
        if constexpr (std::is_same_v<T, bool>)
            return value ? "true" : "false";
        else if constexpr (std::is_same_v<T, char>)
            return TestText::describeCharacter(value);
        else if constexpr (std::is_same_v<T, float>)
            return TestText::describeFloat(value);
        else if constexpr (std::is_same_v<T, double>)
            return TestText::describeDouble(value);
        else if constexpr (TestValueKinds::isInteger<T>)
            return describeInteger(value);
        else if constexpr (TestValueKinds::isText<T>)
            return TestText::describeText(value);
        else if constexpr (std::is_null_pointer_v<T>)
            return "null";
        else
            return describeOther(value);
    }

private:
    template <class T>
    static std::string describeInteger(T value)
    {
        if constexpr (std::is_signed_v<T>)
            return TestText::describeSigned(value);
        else
            return TestText::describeUnsigned(value);
    }

    template <class T>
    static std::string describeOther(const T& value)
    {
        if constexpr (std::is_pointer_v<T> && std::is_object_v<std::remove_pointer_t<T>>)
            return TestText::describeAddress(value);
        else if constexpr (TestValueKinds::Streamable<T>::value)
            return describeStreamed(value);
        else if constexpr (std::is_enum_v<T>)
            return describe(static_cast<std::underlying_type_t<T>>(value));
        else if constexpr (TestValueKinds::Iterable<T>::value)
            return describeSequence(value);
        else
            return TestText::describeType(typeid(T));
    }

    template <class T>
    static std::string describeStreamed(const T& value)
    {
        std::ostringstream stream;
        stream << value;
        return stream.str();
    }

    template <class T>
    static std::string describeSequence(const T& values)
    {
        constexpr int shown = 32;
        std::string text = "[";
        int count = 0;
        for (const auto& value : values)
        {
            if (count++ == shown)
                return text + ", ...]";
            text += (count == 1 ? "" : ", ") + describe(value);
        }
        return text + ']';
    }
};

} // namespace Kr

#pragma once

/// @file
/// Notes, which say what a test is at when a check fails or an exception leaves it.
/// @code
/// const std::string names[] = {"red", "green"};
/// for (const std::string& name : names)
/// {
///     const Kr::TestNote note("colour ", name, " of ", std::size(names));
///     // ... checks
/// }
/// @endcode

#include <base/krBaseApi.h>

#include <sstream>
#include <string>

namespace Kr
{

/// A text that stands beside all failures of the calling thread while it exists.
class KR_BASE_API TestNote
{
public:
    /// The values one behind the other, as `operator<<` writes them.
    template <class... Values>
    explicit TestNote(const Values&... values)
        : TestNote(Text{join(values...)})
    {
    }
    TestNote(const TestNote&) = delete;
    TestNote& operator=(const TestNote&) = delete;
    ~TestNote();

    // For the harness: lines behind others, one for each note of the calling thread, from the
    // outermost on.

    static std::string getAll();
    /// Of those that an exception has ended since the thread's last check.
    static std::string getUnwound();
    static void forgetUnwound() noexcept;

private:
    struct Text
    {
        std::string text;
    };

    explicit TestNote(Text text);

    template <class... Values>
    static std::string join(const Values&... values)
    {
        std::ostringstream stream;
        (stream << ... << values);
        return stream.str();
    }

    const std::string _text;
    const int _exceptions;
    const TestNote* const _previous;
};

} // namespace Kr

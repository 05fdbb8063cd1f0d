#pragma once

/// @file
/// The path of a performance counter: "\Memory\Available Bytes", "\Processor(_Total)\% User Time",
/// "\Process(viewer#1)\Working Set".
/// @code
/// const Kr::PrPath path("\\Process(viewer#1)\\Working Set");
/// std::cout << path.getObject() << ", " << path.getInstance(); // Process, viewer#1
/// std::cout << ", " << path.getCounter() << '\n';              // Working Set
/// @endcode
/// An object is what is counted about: a processor, the memory. If there are several, the instance
/// in parentheses says which; "_Total" is all of them. Instances of one name are told apart by a
/// number: "viewer" is the first, "viewer#1" the second. A parent stands before a slash:
/// "viewer/3". Names are English on every system, and the case of letters does not matter to it.
///
/// A `*` in the instance or the counter makes the path a pattern for `PrCatalog::expand`.
///
/// Pitfalls: mind to double the backslashes in a literal. Paths that name a machine are refused:
/// counters are those of this one.

#include <base/krBaseApi.h>

#include <iosfwd>
#include <string>

namespace Kr
{

class KR_BASE_API PrPath
{
public:
    /// Takes the text apart. Raises `PrEx::ExInvalidPath`, which says what is wrong with it.
    PrPath(const char* text);        // implicit: a literal stands for its path
    PrPath(const std::string& text); // likewise

    /// Puts a path together; `instance` is empty if there is none. Raises `PrEx::ExInvalidPath`
    /// when the text would not be taken apart into the same parts.
    PrPath(const std::string& object, const std::string& instance, const std::string& counter);

    PrPath(const PrPath& other);
    PrPath& operator=(const PrPath& other);
    ~PrPath();

    const std::string& getObject() const noexcept { return _object; }
    /// With its parent and number; empty if the path names none.
    const std::string& getInstance() const noexcept { return _instance; }
    const std::string& getCounter() const noexcept { return _counter; }

    /// Whether it stands for several counters.
    bool isPattern() const noexcept;

    /// The text that it came from.
    std::string toString() const;

    /// Compares the texts; the case of letters counts.
    bool operator==(const PrPath& other) const noexcept;
    bool operator!=(const PrPath& other) const noexcept { return !(*this == other); }

private:
    std::string _object;
    std::string _instance;
    std::string _counter;
};

/// Writes the text.
KR_BASE_API std::ostream& operator<<(std::ostream& os, const PrPath& path);

} // namespace Kr

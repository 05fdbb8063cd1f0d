#pragma once

/// @file
/// Which entries of a directory are wanted. Filters are values that compose:
/// @code
/// using Kr::OsDirFilter;
///
/// const OsDirFilter sources = OsDirFilter::type(Kr::OsFileTypes::RegularFile) &&
///                             (OsDirFilter::name("*.cpp") || OsDirFilter::name("*.h")) &&
///                             !OsDirFilter::name("moc_*");
/// const OsDirFilter large = OsDirFilter::where(
///     [](const Kr::OsDirEntry& entry) { return Kr::OsFile(entry.getPath()).getFullSize() > 1000;
///     });
/// for (const Kr::OsFilePath& path : Kr::OsDir("src").list(sources && large))
///     std::cout << path << '\n';
/// @endcode
/// The right side of && and || is asked only if the left one leaves it open, so cheap filters go
/// first. A filter may be shared by threads, as far as a program's own conditions in it may.

#include <base/krBaseApi.h>
#include <base/osFileTypes.h>

#include <functional>
#include <memory>
#include <string>

namespace Kr
{

class OsDirEntry;

class KR_BASE_API OsDirFilter
{
public:
    using Condition = std::function<bool(const OsDirEntry& entry)>;
    enum CaseMode
    {
        RespectCase,
        IgnoreCase ///< of the letters A to Z
    };

    OsDirFilter(); ///< accepts everything
    /// Entries with a name of that pattern: "*" stands for any text, "?" for one character. Raises
    /// `ExInternalError` for a null pointer.
    static OsDirFilter name(const char* pattern, CaseMode mode = RespectCase);
    static OsDirFilter type(OsFileTypes::ElementType type);
    /// Entries at most so far below the root, where the depth is 0.
    static OsDirFilter depth(unsigned deepest);
    /// Entries for which the condition holds. Raises `ExInternalError` for an empty one.
    static OsDirFilter where(Condition condition);

    OsDirFilter operator&&(const OsDirFilter& other) const; // NOLINT: short-circuits by itself
    OsDirFilter operator||(const OsDirFilter& other) const; // NOLINT: as above
    OsDirFilter operator!() const;

    bool accepts(const OsDirEntry& entry) const;

    /// Whether the name is of the pattern.
    static bool matches(const char* name, const char* pattern, CaseMode mode = RespectCase);

private:
    explicit OsDirFilter(Condition condition);

    std::shared_ptr<const Condition> _condition; ///< null accepts everything
};

} // namespace Kr

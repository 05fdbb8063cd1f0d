#pragma once

/// @file
/// Internal to the library: the names in one directory, as the system gives them.

#include <base/osFileTypes.h>

#include <memory>

namespace Kr
{

class OsDirSearch
{
public:
    OsDirSearch();
    OsDirSearch(OsDirSearch&& other) noexcept;
    OsDirSearch& operator=(OsDirSearch&& other) noexcept;
    ~OsDirSearch();

    /// Moves to the first, or next, entry other than "." and ".."; false if there is none, also
    /// because the directory has been removed meanwhile. Both raise `ExSysErrorWindows`; after that
    /// there is no next entry.
    bool open(const char* directory);
    bool next();

    const char* getName() const noexcept; ///< until the next step
    OsFileTypes::ElementType getType() const noexcept;
    bool isLink() const noexcept; ///< leads to something that lies elsewhere

private:
    struct State;

    std::unique_ptr<State> _state;
};

} // namespace Kr

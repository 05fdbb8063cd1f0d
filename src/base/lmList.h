#pragma once

/// @file
/// The libraries that are loaded in this process, with their places in memory.
/// @code
/// const Kr::LmList list;
/// std::cout << list; // an address range and a path a line
/// const Kr::LmList::Library* library = list.find(&std::cout);
/// if (library != nullptr)
///     std::cout << "the streams live in " << library->name << '\n';
/// @endcode
/// The list is of one moment: libraries that are loaded or unloaded later do not change it. The
/// program itself is its first entry.

#include <base/krBaseApi.h>
#include <base/vector.h>

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>

namespace Kr
{

class KR_BASE_API LmList
{
public:
    struct Library
    {
        std::string name;     ///< the file's name without its folder
        std::string path;     ///< the whole path, in the system's form
        std::uintptr_t begin; ///< its first address
        std::uintptr_t end;   ///< the address behind its last one
    };

    /// Takes the list. Raises `ExSysErrorWindows` if the system refuses.
    LmList();
    ~LmList();
    LmList(const LmList& other);
    LmList& operator=(const LmList& other);

    const Vector<Library>& getLibraries() const { return _libraries; }

    /// The library whose range holds the address; null if none does.
    const Library* find(const void* address) const;

    /// The first library of that file name; null if there is none.
    const Library* find(const char* name) const;

    /// "viewer.exe+0x1a2b": the library of an address and the distance from its begin, as tools
    /// that look up source lines take it; the address alone if no library holds it.
    std::string describe(const void* address) const;

private:
    Vector<Library> _libraries;
};

/// Writes a line for each library.
KR_BASE_API std::ostream& operator<<(std::ostream& os, const LmList& list);

} // namespace Kr

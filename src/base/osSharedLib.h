#pragma once

/// @file
/// A library that is loaded at run time.
/// @code
/// using Blend = int(int, int);
///
/// Kr::OsSharedLib effects("effects"); // its packages are up from here on
/// auto* const blend = effects.getFunction<Blend>("blend");
/// std::cout << blend(3, 4) << '\n';
/// @endcode
/// The name of a library without a folder is looked for beside the program, then where the system
/// looks; one without an extension gets the system's. Both separators are good in a path.
///
/// A library that brings packages is loaded under an `InReinitGuard` of its own, if the library's
/// packages are up, so that they start before `load` returns; under a guard around it they start
/// when that one closes. Before that, the build information of the library is held against that of
/// the process (`DbgBuildInfoMgr`).
///
/// Pitfalls: the packages of a library that is unloaded are forgotten without being stopped. A
/// library that others use stays loaded as long as they do. For one thread at a time.

#include <base/krBaseApi.h>
#include <base/osSharedLibEx.h>

#include <string>

namespace Kr
{

class KR_BASE_API OsSharedLib
{
public:
    OsSharedLib();

    /// Loads a library.
    explicit OsSharedLib(const char* path);

    OsSharedLib(OsSharedLib&& other) noexcept;
    OsSharedLib& operator=(OsSharedLib&& other) noexcept;
    OsSharedLib(const OsSharedLib&) = delete;
    OsSharedLib& operator=(const OsSharedLib&) = delete;

    /// Unloads the library.
    ~OsSharedLib();

    /// Loads a library. Raises `OsSharedLibEx::ExNotLoaded` with the system's reason,
    /// `DbgBuildInfoEx::ExMismatch` if it does not fit the others, `ExInternalError` if this one is
    /// loaded already or the path is null or empty, and what its packages raise. After that last
    /// case the library stays in the process, since some of its packages may be up, but this object
    /// holds nothing.
    void load(const char* path);

    /// Lets the library go, if there is one.
    void unload() noexcept;

    bool isLoaded() const { return _handle != nullptr; }

    /// As it was given to `load`; empty if nothing is loaded.
    const char* getPath() const { return _path.c_str(); }

    /// The address of a symbol that the library exports; null if it has none of that name.
    void* findSymbol(const char* name) const;

    /// The same; raises `OsSharedLibEx::ExNoSymbol` if it has none.
    void* getSymbol(const char* name) const;

    /// The function of that name. Its type is the caller's word: nothing checks it.
    template <class Function>
    Function* getFunction(const char* name) const
    {
        return reinterpret_cast<Function*>(getSymbol(name));
    }

private:
    static void* performLoad(const char* path);
    static void performUnload(void* handle) noexcept;
    static void* performFind(void* handle, const char* name) noexcept;
    static void* loadChecked(const char* path);

    void* _handle = nullptr;
    std::string _path;
};

} // namespace Kr

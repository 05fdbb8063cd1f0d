#pragma once

/// @file
/// The library's version, for the preprocessor and at run time.
/// @code{.cpp}
/// #if KR_VERSION < KR_MAKE_VERSION(1, 0, 0)
/// #error "This viewer needs libKRbase 1.0."
/// #endif
///
/// /// Whether the library that the program runs with is the one that it was built with.
/// bool isSameLibrary()
/// {
///     return Kr::getVersion() == KR_VERSION;
/// }
/// @endcode
/// The macros say what a program was compiled with, the functions what it runs with. Versions are
/// compared as numbers. Libraries of one major version are compatible: a program runs with any that
/// is not older than its headers.

#include <base/krBaseApi.h>

#include <cstdint>

#define KR_VERSION_MAJOR 1
#define KR_VERSION_MINOR 0
#define KR_VERSION_PATCH 0

/// A version as one number; each part is below 1000.
#define KR_MAKE_VERSION(major, minor, patch) ((major)*1000000 + (minor)*1000 + (patch))

/// The version of these headers.
#define KR_VERSION KR_MAKE_VERSION(KR_VERSION_MAJOR, KR_VERSION_MINOR, KR_VERSION_PATCH)

namespace Kr
{

/// The version of the library that is loaded, as `KR_MAKE_VERSION` forms it.
KR_BASE_API std::int32_t getVersion() noexcept;

/// The same as a text: "1.0.0".
KR_BASE_API const char* getVersionText() noexcept;

} // namespace Kr

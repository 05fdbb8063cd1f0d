#pragma once

/// @file
/// The export macro. `KR_BASE_API` marks a class or function that the library exports; everything
/// else stays inside it. A library on top has a macro of its own, made alike.
/// @code{.cpp}
/// class KR_BASE_API LgLog
/// {
/// public:
///     static void init();
/// };
/// @endcode

#if defined(_WIN32)         // the one place outside the platform layer: export and import differ
#if defined(KR_BASE_STATIC) // linked with the library's objects themselves
#define KR_BASE_API
#elif defined(KR_BASE_BUILD)
#define KR_BASE_API __declspec(dllexport)
#else
#define KR_BASE_API __declspec(dllimport)
#endif
#else
#define KR_BASE_API __attribute__((visibility("default")))
#endif

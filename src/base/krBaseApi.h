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

// A variable of the library's, one for each thread, that any module reads by two loads. Where this
// is missing the compiler emulates such variables, and a call is faster.
#define KR_BASE_THREAD_LOCAL __thread __attribute__((tls_model("initial-exec")))
#endif

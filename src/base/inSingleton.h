#pragma once

/// @file
/// The one object of a service that exists exactly while its package is started.
///
/// The package creates the object and hands it over in its start routine, and has it destroyed in
/// its stop routine; the service's own `getInstance()` forwards to the singleton:
/// @code{.cpp}
/// #define VIEWER_API // the export macro of the library that owns the service
///
/// // camera.h
/// class VIEWER_API Camera;
/// extern template class VIEWER_API Kr::InSingleton<Camera>; // at global scope, before any use
///
/// class VIEWER_API Camera
/// {
/// public:
///     static Camera& getInstance() { return *Kr::InSingleton<Camera>::getInstance(); }
///     virtual ~Camera() = default;
/// };
///
/// // camera.cpp
/// #include <base/inSingleton.imp>
/// template class Kr::InSingleton<Camera>;
///
/// // the package's start and stop routines
/// void start() { Kr::InSingleton<Camera>::initialize(new Camera); }
/// void stop() { Kr::InSingleton<Camera>::destroy(); }
/// @endcode
/// The bodies stand in `inSingleton.imp`, which only that one source includes, so that a
/// process has one instance whatever libraries it is made of: a singleton that no source
/// instantiates does not link, rather than exist once in each library.
///
/// Pitfalls: the declaration of the instance has to stand before the class, whose accessor would
/// otherwise instantiate the singleton in every library that includes the header. A singleton that
/// was destroyed cannot be initialised again. There is no lock: `initialize` and `destroy` belong
/// to the main thread, and whoever calls `getInstance` on another thread relies on the package
/// being started for as long as that thread runs.

#include <base/inSingletonEx.h>

namespace Kr
{

/// @tparam T the service, with a virtual destructor
template <class T>
class InSingleton
{
public:
    /// Takes the ownership of the object; null is kept as it is. Raises
    /// `InSingletonEx::ExAlreadyInitialized` or `InSingletonEx::ExAlreadyDestroyed`, and then the
    /// object remains the caller's.
    static void initialize(T* object);

    /// Deletes the object, for good. Raises `InSingletonEx::ExNotInitialized` or
    /// `InSingletonEx::ExAlreadyDestroyed`.
    static void destroy();

    /// The object. Raises `InSingletonEx::ExNotInitialized` before `initialize` and after
    /// `destroy`.
    static T* getInstance();

private:
    enum State
    {
        NotInitialized = 0,
        Initialized = 1,
        Destroyed = 2
    };

    static T* _instance;
    static State _state;
};

} // namespace Kr

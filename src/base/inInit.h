#pragma once

/// @file
/// How a library declares its packages.
///
/// A package is described by a tag, a struct without data in the namespace `KrInit`, and registers
/// itself by one static object in a source of its own:
/// @code
/// // viewerPackage.h
/// namespace KrInit
/// {
/// struct viewer
/// {
///     static constexpr const char* name = "viewer";
///     using Dependencies = Kr::InDependencies<KrInit::base, KrInit::logger>;
///     static void start();
///     static void stop();
/// };
/// } // namespace KrInit
/// extern template class VIEWER_API Kr::InInit<KrInit::viewer>; // if others ask isInitialized()
///
/// // viewerPackage.cpp
/// #include <base/inInit.imp>
/// template class Kr::InInit<KrInit::viewer>;
/// static Kr::InInit<KrInit::viewer> viewerPackage;
/// void KrInit::viewer::start() { Viewer::openDisplays(); }
/// void KrInit::viewer::stop() { Viewer::closeDisplays(); }
/// @endcode
/// The manager calls `start` when everything that the package needs, directly or not, is up, and
/// `stop` in the reverse order. A dependency's tag need only be declared.
///
/// Pitfalls: a start routine must not rely on a package that it does not declare; a dependency that
/// is declared twice counts twice in the package's rank; tags of one name are one package, even in
/// two libraries, and only one object of theirs is started. The bodies stand in `inInit.imp`, which
/// only the package's own source includes.

#include <base/inPackageInit.h>

namespace Kr
{

/// The tags of the packages that a package needs.
template <class... Packages>
struct InDependencies
{
};

/// The package of a tag.
template <class T>
class InInit : public InPackageInit
{
public:
    /// Registers the package, then declares its dependencies.
    InInit();

    /// The identity under which other packages need this one.
    static const std::type_info* getType();

    /// Whether the package is up.
    static bool isInitialized();

    void performInitialize() override;
    void performFinalize() override;
    void setInitialized(bool initialized) override;

private:
    template <class... Packages>
    void addDependencies(InDependencies<Packages...>);

    static bool _initialized;
};

} // namespace Kr

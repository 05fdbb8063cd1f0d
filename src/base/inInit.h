#pragma once

/// @file
/// How a library declares its packages.
///
/// A package is described by a tag, a struct without data in the namespace `KrInit`, and registers
/// itself by one static object in a source of its own:
/// @code{.cpp}
/// // viewerPackage.h
/// #include <base/krInitPackages.h>
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
///
/// // viewerPackage.cpp
/// #include <base/inInit.imp>
/// static Kr::InInit<KrInit::viewer> viewerPackage;
/// void KrInit::viewer::start() { std::cout << "opens its displays\n"; }
/// void KrInit::viewer::stop() { std::cout << "closes its displays\n"; }
/// @endcode
/// The manager calls `start` when everything that the package needs, directly or not, is up, and
/// `stop` in the reverse order. A dependency's tag need only be declared.
///
/// The bodies stand in `inInit.imp`, which only the package's own source includes. Where others ask
/// `isInitialized()`, the header ends with
/// `extern template class VIEWER_API Kr::InInit<KrInit::viewer>;` and the source has
/// `template class Kr::InInit<KrInit::viewer>;` before the object, `VIEWER_API` being the library's
/// export macro, so that the process has one answer.
///
/// Pitfalls: a start routine must not rely on a package that its own does not declare. A dependency
/// that is declared twice counts twice in the package's rank. Tags of one name are one package,
/// even in two libraries: only one of their objects is started.

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

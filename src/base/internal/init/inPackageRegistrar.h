#pragma once

/// @file
/// Internal to the initialisation framework: what packages need of the manager that knows them.

#include <typeinfo>

namespace Kr
{

class InPackageInit;

/// Declared apart from the manager, which is built on packages, and defined with it.
struct InPackageRegistrar
{
    /// Builds the manager, if that has not been done.
    static void prepare();
    /// Raises `InEx::ExReinitWithoutGuard`.
    static void registerPackage(InPackageInit& package);
    static void unregisterPackage(const InPackageInit& package);
    /// Whether a package of the type is up.
    static bool isInitialized(const std::type_info& type);
};

} // namespace Kr

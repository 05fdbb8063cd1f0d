#pragma once

/// @file
/// The library's own packages, in the order in which they start. Packages of an application
/// usually need `KrInit::base`, which needs all the others.
/// @code{.cpp}
/// namespace KrInit
/// {
/// struct viewer
/// {
///     static constexpr const char* name = "viewer";
///     using Dependencies = Kr::InDependencies<KrInit::base>;
///     static void start();
///     static void stop();
/// };
/// } // namespace KrInit
/// @endcode

#include <base/inInit.h>

namespace KrInit
{

/// The initialisation framework itself.
struct initialize
{
    static constexpr const char* name = "initialize";
    using Dependencies = Kr::InDependencies<>;
    static void start();
    static void stop();
};

/// The heap manager.
struct heapMgr
{
    static constexpr const char* name = "heapMgr";
    using Dependencies = Kr::InDependencies<initialize>;
    static void start();
    static void stop();
};

/// The command line.
struct initArg
{
    static constexpr const char* name = "initArg";
    using Dependencies = Kr::InDependencies<initialize>;
    static void start();
    static void stop();
};

/// The operating-system layer: identifies the processor and its memory.
struct osal
{
    static constexpr const char* name = "osal";
    using Dependencies = Kr::InDependencies<initialize>;
    static void start();
    static void stop();
};

/// Initialisation variables.
struct initVars
{
    static constexpr const char* name = "initVars";
    using Dependencies = Kr::InDependencies<initialize, osal>;
    static void start();
    static void stop();
};

/// Timers and profilers.
struct profiling
{
    static constexpr const char* name = "profiling";
    using Dependencies = Kr::InDependencies<initialize, osal>;
    static void start();
    static void stop();
};

/// Message groups and log files.
struct logger
{
    static constexpr const char* name = "logger";
    using Dependencies = Kr::InDependencies<initialize, osal, profiling>;
    static void start();
    static void stop();
};

/// Trace and assertions.
struct debugging
{
    static constexpr const char* name = "debugging";
    using Dependencies = Kr::InDependencies<initArg, initialize, logger, osal>;
    static void start();
    static void stop();
};

/// Numeric utilities.
struct baseMath
{
    static constexpr const char* name = "baseMath";
    using Dependencies = Kr::InDependencies<debugging, initArg, initialize, osal, profiling>;
    static void start();
    static void stop();
};

/// Random numbers.
struct random
{
    static constexpr const char* name = "random";
    using Dependencies = Kr::InDependencies<debugging, initArg, initialize, osal, profiling>;
    static void start();
    static void stop();
};

/// Discrete time.
struct discreteTime
{
    static constexpr const char* name = "discreteTime";
    using Dependencies = Kr::InDependencies<baseMath, debugging, initArg, initialize, profiling>;
    static void start();
    static void stop();
};

/// The test harness.
struct testing
{
    static constexpr const char* name = "testing";
    using Dependencies =
        Kr::InDependencies<debugging, heapMgr, initArg, initialize, logger, osal, profiling>;
    static void start();
    static void stop();
};

/// The whole library.
struct base
{
    static constexpr const char* name = "base";
    using Dependencies =
        Kr::InDependencies<initialize, heapMgr, initArg, osal, initVars, profiling, logger,
                           debugging, baseMath, random, discreteTime, testing>;
    static void start();
    static void stop();
};

} // namespace KrInit

extern template class KR_BASE_API Kr::InInit<KrInit::initialize>;
extern template class KR_BASE_API Kr::InInit<KrInit::heapMgr>;
extern template class KR_BASE_API Kr::InInit<KrInit::initArg>;
extern template class KR_BASE_API Kr::InInit<KrInit::osal>;
extern template class KR_BASE_API Kr::InInit<KrInit::initVars>;
extern template class KR_BASE_API Kr::InInit<KrInit::profiling>;
extern template class KR_BASE_API Kr::InInit<KrInit::logger>;
extern template class KR_BASE_API Kr::InInit<KrInit::debugging>;
extern template class KR_BASE_API Kr::InInit<KrInit::baseMath>;
extern template class KR_BASE_API Kr::InInit<KrInit::random>;
extern template class KR_BASE_API Kr::InInit<KrInit::discreteTime>;
extern template class KR_BASE_API Kr::InInit<KrInit::testing>;
extern template class KR_BASE_API Kr::InInit<KrInit::base>;

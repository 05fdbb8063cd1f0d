#pragma once

/// @file
/// How a library says what it is and how it was built.
///
/// A line in one of its sources does it:
/// @code{.cpp}
/// KR_BUILD_INFO("Effects", "2.1.0");
/// @endcode
/// The line registers the library, for as long as it is loaded, with `DbgBuildInfoMgr`, which holds
/// it against the others when the program starts and when a library is loaded.
///
/// A stamp tells builds of one version apart: the build passes it as `KR_BUILD_STAMP`, a text in
/// quotes, such as a number that is counted up. Without one it is empty.

#include <base/krBaseApi.h>
#include <base/krVersion.h>

#include <cstdint>
#include <string>

namespace Kr
{

/// One library. Registered from its construction to the end of its life.
class KR_BASE_API DbgBuildInfo
{
public:
    /// The texts are copied; null counts as empty.
    /// @param name the library's
    /// @param version its own
    /// @param baseVersion the one of libKRbase's headers that it was compiled with, as
    ///        `KR_VERSION`
    /// @param compiler its name and version
    /// @param runtime the form of the standard library, which libraries must share to exchange its
    ///        objects
    /// @param buildType "debug" or "release"
    /// @param stamp what tells builds apart
    DbgBuildInfo(const char* name, const char* version, std::int32_t baseVersion,
                 const char* compiler, const char* runtime, const char* buildType,
                 const char* stamp);
    DbgBuildInfo(const DbgBuildInfo&) = delete;
    DbgBuildInfo& operator=(const DbgBuildInfo&) = delete;
    ~DbgBuildInfo();

    const std::string& getName() const { return _name; }
    const std::string& getVersion() const { return _version; }
    std::int32_t getBaseVersion() const { return _baseVersion; }
    const std::string& getCompiler() const { return _compiler; }
    const std::string& getRuntime() const { return _runtime; }
    const std::string& getBuildType() const { return _buildType; }
    const std::string& getStamp() const { return _stamp; }

    /// "Effects 2.1.0, gcc 12.2.0, libstdc++ (C++11 strings), release, built with libKRbase 1.0.0",
    /// and the stamp if there is one.
    std::string describe() const;

private:
    const std::string _name;
    const std::string _version;
    const std::int32_t _baseVersion;
    const std::string _compiler;
    const std::string _runtime;
    const std::string _buildType;
    const std::string _stamp;
};

} // namespace Kr

// What the compiler says of this build

#define KR_BUILD_TEXT(value) KR_BUILD_TEXT_EXPANDED(value)
#define KR_BUILD_TEXT_EXPANDED(value) #value

#if defined(__clang__)
#define KR_BUILD_COMPILER                                                                          \
    "clang " KR_BUILD_TEXT(__clang_major__) "." KR_BUILD_TEXT(__clang_minor__) "." KR_BUILD_TEXT(  \
        __clang_patchlevel__)
#else
#define KR_BUILD_COMPILER                                                                          \
    "gcc " KR_BUILD_TEXT(__GNUC__) "." KR_BUILD_TEXT(__GNUC_MINOR__) "." KR_BUILD_TEXT(            \
        __GNUC_PATCHLEVEL__)
#endif

#if defined(_GLIBCXX_DEBUG)
#define KR_BUILD_RUNTIME "libstdc++ (debug mode)"
#elif defined(_GLIBCXX_USE_CXX11_ABI) && _GLIBCXX_USE_CXX11_ABI
#define KR_BUILD_RUNTIME "libstdc++ (C++11 strings)"
#elif defined(__GLIBCXX__)
#define KR_BUILD_RUNTIME "libstdc++ (old strings)"
#else
#define KR_BUILD_RUNTIME "libc++"
#endif

#if defined(NDEBUG)
#define KR_BUILD_TYPE "release"
#else
#define KR_BUILD_TYPE "debug"
#endif

#if !defined(KR_BUILD_STAMP)
#define KR_BUILD_STAMP ""
#endif

/// Registers the library whose source this stands in.
#define KR_BUILD_INFO(name, version)                                                               \
    static const ::Kr::DbgBuildInfo krBuildInfo(name, version, KR_VERSION, KR_BUILD_COMPILER,      \
                                                KR_BUILD_RUNTIME, KR_BUILD_TYPE, KR_BUILD_STAMP)

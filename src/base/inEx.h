#pragma once

/// @file
/// The exceptions of the initialisation family: packages, variables and context aliases.
/// Every name that a reason holds is cut at 256 characters.
/// @code
/// try
/// {
///     const Kr::InInitGuard guard(argc, argv);
///     render();
/// }
/// catch (const Kr::InEx::ExDependencyCycle&)
/// {
///     Kr::InInitMgr::getInstance().reportCycles(std::cerr);
/// }
/// catch (const Kr::InEx& error) // what else can go wrong when packages start or stop
/// {
///     std::cerr << error.getReason() << '\n';
/// }
/// @endcode

#include <base/exBase.h>

namespace Kr
{

class KR_BASE_API InEx : public ExBase
{
public:
    class ExPackageNotRegistered;
    class ExDependencyCycle;
    class ExPackageInitError;
    class ExRegAfterInit;
    class ExReinitWithoutGuard;
    class ExDoubleInit;
    class ExFinaliseBeforeInit;
    class ExDoubleFinalise;
    class ExHandleAlreadyInUse;
    class ExUninitializedObject;
    class ExInvalidObject;
    class ExContextAliasAlreadyDefined;
    class ExVariableAlreadyInitialized;
    class ExNoNewContextAliasAfterInit;

protected:
    InEx(const char* file, int line) noexcept;

    /// Sets the reason from a format with one or two "%.*s", each with a precision of 256; a null
    /// name counts as empty.
    void formatReason(const char* format, const char* name, const char* key = nullptr) noexcept;
};

/// "Init Package not registered: '%.*s'.": a package needs one that no library has registered.
class KR_BASE_API InEx::ExPackageNotRegistered
    : public ExConcrete<InEx::ExPackageNotRegistered, std::runtime_error, InEx>
{
public:
    ExPackageNotRegistered(const char* file, int line, const char* typeName);
};

/// "Init dependencies contain cycle(s)": see `InInitMgr::reportCycles`.
class KR_BASE_API InEx::ExDependencyCycle
    : public ExConcrete<InEx::ExDependencyCycle, std::logic_error, InEx>
{
public:
    ExDependencyCycle(const char* file, int line);
};

/// "Init error in package: '%.*s'.": for a package's start routine to raise when it cannot start.
class KR_BASE_API InEx::ExPackageInitError
    : public ExConcrete<InEx::ExPackageInitError, std::runtime_error, InEx>
{
public:
    ExPackageInitError(const char* file, int line, const char* packageName);
};

/// "Package registered after initialize().": for applications; the library itself does not raise
/// it.
class KR_BASE_API InEx::ExRegAfterInit
    : public ExConcrete<InEx::ExRegAfterInit, std::runtime_error, InEx>
{
public:
    ExRegAfterInit(const char* file, int line);
};

/// "Reinitialize without using the reinitialize guard.": a package registers after the first pass
/// while no `InReinitGuard` is open.
class KR_BASE_API InEx::ExReinitWithoutGuard
    : public ExConcrete<InEx::ExReinitWithoutGuard, std::runtime_error, InEx>
{
public:
    ExReinitWithoutGuard(const char* file, int line);
};

/// "Multiple calls to initialize().": for applications; the library itself does not raise it.
class KR_BASE_API InEx::ExDoubleInit
    : public ExConcrete<InEx::ExDoubleInit, std::runtime_error, InEx>
{
public:
    ExDoubleInit(const char* file, int line);
};

/// "Call to finalize() before initialize()."
class KR_BASE_API InEx::ExFinaliseBeforeInit
    : public ExConcrete<InEx::ExFinaliseBeforeInit, std::runtime_error, InEx>
{
public:
    ExFinaliseBeforeInit(const char* file, int line);
};

/// "Multiple calls to finalize()."
class KR_BASE_API InEx::ExDoubleFinalise
    : public ExConcrete<InEx::ExDoubleFinalise, std::runtime_error, InEx>
{
public:
    ExDoubleFinalise(const char* file, int line);
};

/// "Trying to register an object with an already used handle: '%.*s'."
class KR_BASE_API InEx::ExHandleAlreadyInUse
    : public ExConcrete<InEx::ExHandleAlreadyInUse, std::runtime_error, InEx>
{
public:
    ExHandleAlreadyInUse(const char* file, int line, const char* handle);
};

/// "Trying to access an object that is not fully initialized: '%.*s'."
class KR_BASE_API InEx::ExUninitializedObject
    : public ExConcrete<InEx::ExUninitializedObject, std::logic_error, InEx>
{
public:
    ExUninitializedObject(const char* file, int line, const char* handle);
};

/// "Trying to access an object that has an invalid value: '%.*s'."
class KR_BASE_API InEx::ExInvalidObject
    : public ExConcrete<InEx::ExInvalidObject, std::logic_error, InEx>
{
public:
    ExInvalidObject(const char* file, int line, const char* handle);
};

/// "Trying to re-create an already existing Context Alias: '%.*s'."
class KR_BASE_API InEx::ExContextAliasAlreadyDefined
    : public ExConcrete<InEx::ExContextAliasAlreadyDefined, std::logic_error, InEx>
{
public:
    ExContextAliasAlreadyDefined(const char* file, int line, const char* alias);
};

/// "Trying to override an InVariable that is already initialized: '%.*s'."
class KR_BASE_API InEx::ExVariableAlreadyInitialized
    : public ExConcrete<InEx::ExVariableAlreadyInitialized, std::logic_error, InEx>
{
public:
    ExVariableAlreadyInitialized(const char* file, int line, const char* handle);
};

/// "Trying to do post initialization registration of context alias instance: '%.*s' (key: %.*s)."
class KR_BASE_API InEx::ExNoNewContextAliasAfterInit
    : public ExConcrete<InEx::ExNoNewContextAliasAfterInit, std::logic_error, InEx>
{
public:
    ExNoNewContextAliasAfterInit(const char* file, int line, const char* instance, const char* key);
};

} // namespace Kr

#include <base/inEx.h>

#include <base/internal/errors/fixedText.h>

#include <cstdio>

namespace Kr
{

namespace
{

constexpr int nameCut = 256;

} // namespace

InEx::InEx(const char* file, int line) noexcept
    : ExBase(file, line)
{
}

void InEx::formatReason(const char* format, const char* name, const char* key) noexcept
{
    char text[reasonSize];
    std::snprintf(text, sizeof text, format, nameCut, orEmpty(name), nameCut, orEmpty(key));
    setReason(text);
}

InEx::ExPackageNotRegistered::ExPackageNotRegistered(const char* file, int line,
                                                     const char* typeName)
    : ExConcrete(file, line)
{
    formatReason("Init Package not registered: '%.*s'.", typeName);
}

InEx::ExDependencyCycle::ExDependencyCycle(const char* file, int line)
    : ExConcrete(file, line)
{
    setReason("Init dependencies contain cycle(s)");
}

InEx::ExPackageInitError::ExPackageInitError(const char* file, int line, const char* packageName)
    : ExConcrete(file, line)
{
    formatReason("Init error in package: '%.*s'.", packageName);
}

InEx::ExRegAfterInit::ExRegAfterInit(const char* file, int line)
    : ExConcrete(file, line)
{
    setReason("Package registered after initialize().");
}

InEx::ExReinitWithoutGuard::ExReinitWithoutGuard(const char* file, int line)
    : ExConcrete(file, line)
{
    setReason("Reinitialize without using the reinitialize guard.");
}

InEx::ExDoubleInit::ExDoubleInit(const char* file, int line)
    : ExConcrete(file, line)
{
    setReason("Multiple calls to initialize().");
}

InEx::ExFinaliseBeforeInit::ExFinaliseBeforeInit(const char* file, int line)
    : ExConcrete(file, line)
{
    setReason("Call to finalize() before initialize().");
}

InEx::ExDoubleFinalise::ExDoubleFinalise(const char* file, int line)
    : ExConcrete(file, line)
{
    setReason("Multiple calls to finalize().");
}

InEx::ExHandleAlreadyInUse::ExHandleAlreadyInUse(const char* file, int line, const char* handle)
    : ExConcrete(file, line)
{
    formatReason("Trying to register an object with an already used handle: '%.*s'.", handle);
}

InEx::ExUninitializedObject::ExUninitializedObject(const char* file, int line, const char* handle)
    : ExConcrete(file, line)
{
    formatReason("Trying to access an object that is not fully initialized: '%.*s'.", handle);
}

InEx::ExInvalidObject::ExInvalidObject(const char* file, int line, const char* handle)
    : ExConcrete(file, line)
{
    formatReason("Trying to access an object that has an invalid value: '%.*s'.", handle);
}

InEx::ExContextAliasAlreadyDefined::ExContextAliasAlreadyDefined(const char* file, int line,
                                                                 const char* alias)
    : ExConcrete(file, line)
{
    formatReason("Trying to re-create an already existing Context Alias: '%.*s'.", alias);
}

InEx::ExVariableAlreadyInitialized::ExVariableAlreadyInitialized(const char* file, int line,
                                                                 const char* handle)
    : ExConcrete(file, line)
{
    formatReason("Trying to override an InVariable that is already initialized: '%.*s'.", handle);
}

InEx::ExNoNewContextAliasAfterInit::ExNoNewContextAliasAfterInit(const char* file, int line,
                                                                 const char* instance,
                                                                 const char* key)
    : ExConcrete(file, line)
{
    formatReason("Trying to do post initialization registration of context alias instance: '%.*s' "
                 "(key: %.*s).",
                 instance, key);
}

} // namespace Kr

#include <base/osSharedLib.h>

#include <base/assert.h>
#include <base/dbgBuildInfoMgr.h>
#include <base/exSysError.h>
#include <base/inReinitGuard.h>
#include <base/krInitPackages.h>
#include <base/raise.h>

#include <utility>

namespace Kr
{

OsSharedLib::OsSharedLib() = default;

OsSharedLib::OsSharedLib(const char* path)
{
    load(path);
}

OsSharedLib::OsSharedLib(OsSharedLib&& other) noexcept
    : _handle(std::exchange(other._handle, nullptr))
    , _path(std::move(other._path))
{
    other._path.clear();
}

OsSharedLib& OsSharedLib::operator=(OsSharedLib&& other) noexcept
{
    OsSharedLib taken(std::move(other));
    std::swap(_handle, taken._handle);
    std::swap(_path, taken._path);
    return *this;
}

OsSharedLib::~OsSharedLib()
{
    unload();
}

void OsSharedLib::load(const char* path)
{
    KR_ASSERT(!isLoaded());
    KR_ASSERT(path != nullptr && *path != '\0');
    std::string name = path;
    void* handle = nullptr;
    // Before the first pass a guard would start the packages, instead of `initialize`.
    if (InInit<KrInit::initialize>::isInitialized())
    {
        const InReinitGuard guard;
        handle = loadChecked(path);
    }
    else
        handle = loadChecked(path);
    _handle = handle;
    _path = std::move(name);
}

/// What does not fit goes again before its packages start.
void* OsSharedLib::loadChecked(const char* path)
{
    void* const handle = performLoad(path);
    try
    {
        DbgBuildInfoMgr::getInstance().validate();
    }
    catch (...)
    {
        performUnload(handle);
        throw;
    }
    return handle;
}

void OsSharedLib::unload() noexcept
{
    if (isLoaded())
        performUnload(std::exchange(_handle, nullptr));
    _path.clear();
}

void* OsSharedLib::findSymbol(const char* name) const
{
    KR_ASSERT(isLoaded());
    KR_ASSERT(name != nullptr);
    return performFind(_handle, name);
}

void* OsSharedLib::getSymbol(const char* name) const
{
    void* const symbol = findSymbol(name);
    if (symbol == nullptr)
    {
        const ExSysErrorWindows system(KR_HERE);
        raise<OsSharedLibEx::ExNoSymbol>(KR_HERE, getPath(), name, system.getReason());
    }
    return symbol;
}

} // namespace Kr

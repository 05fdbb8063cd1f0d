#include <base/exSysError.h>
#include <base/osSharedLib.h>
#include <base/raise.h>

#include <platform/platform.h>

#include <algorithm>

namespace Kr
{

void* OsSharedLib::performLoad(const char* path)
{
    std::string systemPath = path;
    std::replace(systemPath.begin(), systemPath.end(), '/', '\\');
    const HMODULE library = LoadLibraryA(systemPath.c_str());
    if (library == nullptr)
    {
        std::string reason = ExSysErrorWindows(KR_HERE).getReason();
        if (*krLoadDetail() != '\0')
            reason.append(" (").append(krLoadDetail()).append(")");
        raise<OsSharedLibEx::ExNotLoaded>(KR_HERE, path, reason.c_str());
    }
    return library;
}

void OsSharedLib::performUnload(void* handle) noexcept
{
    FreeLibrary(static_cast<HMODULE>(handle));
}

void* OsSharedLib::performFind(void* handle, const char* name) noexcept
{
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle), name));
}

} // namespace Kr

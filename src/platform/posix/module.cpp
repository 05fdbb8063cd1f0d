#include <platform/posix/handle.h>
#include <platform/posix/path.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include <dlfcn.h>
#include <link.h>
#include <unistd.h>

// Loading

namespace
{

thread_local char loadDetail[512] = "";

void setLoadDetail(const char* text) noexcept
{
    std::snprintf(loadDetail, sizeof loadDetail, "%s", text != nullptr ? text : "");
}

/// Which of the system's codes the loader's message stands for.
DWORD classifyLoadError(const char* message) noexcept
{
    const auto says = [message](const char* part) { return std::strstr(message, part) != nullptr; };
    if (says("undefined symbol") || says("version `"))
        return ERROR_PROC_NOT_FOUND;
    if (says("No such file") || says("cannot open shared object"))
        return says("Permission denied") ? ERROR_ACCESS_DENIED : ERROR_MOD_NOT_FOUND;
    return ERROR_BAD_EXE_FORMAT;
}

void addExtension(std::string& path)
{
    const std::size_t slash = path.rfind('/');
    if (path.find('.', slash == std::string::npos ? 0 : slash + 1) == std::string::npos)
        path += ".so";
}

std::string getProgramPath()
{
    char path[krModulePathSize];
    const ssize_t length = ::readlink("/proc/self/exe", path, sizeof path);
    return length > 0 ? std::string(path, static_cast<std::size_t>(length)) : std::string();
}

void* load(const char* path)
{
    std::string host;
    if (krHostPath(path, host) == nullptr)
        return nullptr;
    addExtension(host);
    if (host.find('/') == std::string::npos)
    {
        std::string beside = getProgramPath();
        beside.erase(beside.rfind('/') + 1);
        beside += host;
        if (::access(beside.c_str(), F_OK) == 0)
            host = beside;
    }
    void* const library = ::dlopen(host.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr)
    {
        setLoadDetail(::dlerror());
        SetLastError(classifyLoadError(loadDetail));
    }
    return library;
}

} // namespace

HMODULE LoadLibraryA(const char* path) noexcept
{
    setLoadDetail("");
    try
    {
        return load(path);
    }
    catch (const std::bad_alloc&)
    {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
}

BOOL FreeLibrary(HMODULE library) noexcept
{
    if (library != nullptr && ::dlclose(library) == 0)
        return 1;
    SetLastError(ERROR_INVALID_HANDLE);
    return 0;
}

FARPROC GetProcAddress(HMODULE library, const char* name) noexcept
{
    void* const symbol = library != nullptr && name != nullptr ? ::dlsym(library, name) : nullptr;
    if (symbol == nullptr)
        SetLastError(library != nullptr ? ERROR_PROC_NOT_FOUND : ERROR_INVALID_HANDLE);
    return reinterpret_cast<FARPROC>(symbol);
}

const char* krLoadDetail() noexcept
{
    return loadDetail;
}

// What is loaded

namespace
{

struct Module
{
    std::string path;
    std::uintptr_t begin;
    std::uintptr_t end;
};

class Snapshot : public KrHandleObject
{
public:
    std::vector<Module> modules;
    std::size_t next = 0;
};

/// The range that the module's segments span; empty if it has none.
Module describe(const dl_phdr_info& info)
{
    Module module{info.dlpi_name, UINTPTR_MAX, 0};
    for (int i = 0; i < info.dlpi_phnum; ++i)
    {
        const auto& header = info.dlpi_phdr[i];
        if (header.p_type != PT_LOAD)
            continue;
        const std::uintptr_t begin = info.dlpi_addr + header.p_vaddr;
        module.begin = std::min(module.begin, begin);
        module.end = std::max(module.end, begin + header.p_memsz);
    }
    return module;
}

/// The loader calls this with its lock held, so the list is of one moment. What has no file is the
/// program itself, which comes first, or a part of the kernel.
int collect(dl_phdr_info* info, std::size_t, void* list) noexcept
{
    auto& modules = *static_cast<std::vector<Module>*>(list);
    try
    {
        Module module = describe(*info);
        if (modules.empty())
            module.path = getProgramPath();
        if (module.begin < module.end && module.path.find('/') != std::string::npos)
            modules.push_back(module);
        return 0;
    }
    catch (const std::bad_alloc&)
    {
        return 1;
    }
}

/// A path of the host in the form that the system gives.
std::string toSystemPath(const std::string& path)
{
    std::string result = "C:" + path;
    std::replace(result.begin(), result.end(), '/', '\\');
    return result;
}

BOOL fillNext(HANDLE handle, MODULEENTRY32* entry) noexcept
{
    auto* const snapshot = krObject<Snapshot>(handle);
    if (snapshot == nullptr)
        return 0;
    if (entry == nullptr || entry->dwSize < sizeof *entry)
    {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    if (snapshot->next == snapshot->modules.size())
    {
        SetLastError(ERROR_NO_MORE_FILES);
        return 0;
    }
    const Module& module = snapshot->modules[snapshot->next++];
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the loader speaks of addresses as integers
    entry->modBaseAddr = reinterpret_cast<unsigned char*>(module.begin);
    entry->modBaseSize = static_cast<DWORD>(module.end - module.begin);
    const std::size_t name = module.path.rfind('\\') + 1;
    std::snprintf(entry->szModule, sizeof entry->szModule, "%s", module.path.c_str() + name);
    std::snprintf(entry->szExePath, sizeof entry->szExePath, "%s", module.path.c_str());
    return 1;
}

} // namespace

HANDLE CreateToolhelp32Snapshot(DWORD flags, DWORD process) noexcept
{
    if (flags != TH32CS_SNAPMODULE || (process != 0 && process != GetCurrentProcessId()))
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return INVALID_HANDLE_VALUE;
    }
    try
    {
        auto snapshot = std::make_unique<Snapshot>();
        if (::dl_iterate_phdr(&collect, &snapshot->modules) != 0)
            throw std::bad_alloc();
        for (Module& module : snapshot->modules)
            module.path = toSystemPath(module.path);
        return KrHandleObject::open(snapshot.release());
    }
    catch (const std::bad_alloc&)
    {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return INVALID_HANDLE_VALUE;
    }
}

BOOL Module32First(HANDLE snapshot, MODULEENTRY32* entry) noexcept
{
    auto* const object = krObject<Snapshot>(snapshot);
    if (object == nullptr)
        return 0;
    object->next = 0;
    return fillNext(snapshot, entry);
}

BOOL Module32Next(HANDLE snapshot, MODULEENTRY32* entry) noexcept
{
    return fillNext(snapshot, entry);
}

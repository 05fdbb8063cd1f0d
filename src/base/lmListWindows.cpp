#include <base/exSysError.h>
#include <base/lmList.h>
#include <base/raise.h>

#include <platform/platform.h>

namespace Kr
{

namespace
{

class ModuleSnapshot
{
public:
    /// Tries anew while the list changes underneath the system.
    ModuleSnapshot()
    {
        do
            _handle = CreateToolhelp32Snapshot(TH32CS_SNAPMODULE, 0);
        while (_handle == INVALID_HANDLE_VALUE && GetLastError() == ERROR_BAD_LENGTH);
        if (_handle == INVALID_HANDLE_VALUE)
            raise<ExSysErrorWindows>(KR_HERE);
    }
    ModuleSnapshot(const ModuleSnapshot&) = delete;
    ModuleSnapshot& operator=(const ModuleSnapshot&) = delete;
    ~ModuleSnapshot() { CloseHandle(_handle); }

    HANDLE get() const { return _handle; }

private:
    HANDLE _handle;
};

} // namespace

LmList::LmList()
{
    const ModuleSnapshot snapshot;
    MODULEENTRY32 entry;
    entry.dwSize = sizeof entry;
    for (BOOL found = Module32First(snapshot.get(), &entry); found != 0;
         found = Module32Next(snapshot.get(), &entry))
    {
        const auto begin = reinterpret_cast<std::uintptr_t>(entry.modBaseAddr);
        _libraries.push_back({entry.szModule, entry.szExePath, begin, begin + entry.modBaseSize});
    }
}

} // namespace Kr

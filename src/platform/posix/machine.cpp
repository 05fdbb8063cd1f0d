// The machine's sizes over POSIX.

#include <platform/platform.h>

#include <cstdio>

#include <unistd.h>

void GetSystemInfo(SYSTEM_INFO* info) noexcept
{
    info->dwPageSize = static_cast<DWORD>(::sysconf(_SC_PAGESIZE));
}

std::size_t GetLargePageMinimum() noexcept
{
    std::FILE* table = std::fopen("/proc/meminfo", "r");
    if (table == nullptr)
        return 0;
    char line[128];
    unsigned long kilobytes = 0;
    while (kilobytes == 0 && std::fgets(line, sizeof line, table) != nullptr)
        static_cast<void>(std::sscanf(line, "Hugepagesize: %lu kB", &kilobytes));
    std::fclose(table);
    return std::size_t{kilobytes} * 1024;
}

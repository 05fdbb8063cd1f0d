#include <platform/platform.h>
#include <platform/posix/path.h>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <string>

#include <sys/statfs.h>

namespace
{

/// The numbers by which the kernel tells the file systems that live on another machine: NFS, SMB,
/// CIFS, SMB 2, AFS, 9P.
constexpr std::uint32_t remoteFileSystems[] = {0x6969,     0x517B,     0xFF534D42,
                                               0xFE534D42, 0x5346414F, 0x01021997};

bool describeVolume(const char* root, struct statfs& volume)
{
    std::string storage;
    const char* const hostPath = krHostPath(root, storage);
    if (hostPath == nullptr)
        return false;
    if (::statfs(hostPath, &volume) == 0)
        return true;
    krSetPathError(hostPath);
    return false;
}

DWORD cut(std::uint64_t count)
{
    return static_cast<DWORD>(std::min<std::uint64_t>(count, std::numeric_limits<DWORD>::max()));
}

} // namespace

unsigned GetDriveTypeA(const char* root) noexcept
{
    struct statfs volume = {};
    if (!describeVolume(root, volume))
        return DRIVE_NO_ROOT_DIR;
    const auto type = static_cast<std::uint32_t>(volume.f_type);
    return std::find(std::begin(remoteFileSystems), std::end(remoteFileSystems), type) !=
                   std::end(remoteFileSystems)
               ? DRIVE_REMOTE
               : DRIVE_FIXED;
}

BOOL GetDiskFreeSpaceA(const char* root, DWORD* sectorsPerCluster, DWORD* bytesPerSector,
                       DWORD* freeClusters, DWORD* totalClusters) noexcept
{
    constexpr DWORD sectorSize = 512;
    struct statfs volume = {};
    if (!describeVolume(root, volume))
        return 0;
    *bytesPerSector = sectorSize;
    *sectorsPerCluster = std::max(static_cast<DWORD>(volume.f_frsize) / sectorSize, DWORD{1});
    *freeClusters = cut(volume.f_bavail);
    *totalClusters = cut(volume.f_blocks);
    return 1;
}

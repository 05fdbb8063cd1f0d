#include <base/internal/log/lgLogMark.h>

#include <platform/platform.h>

namespace Kr
{

LgRingFormat::FileMark LgLogMark::find(const std::string& path) noexcept
{
    const HANDLE file =
        CreateFileA(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return {};
    BY_HANDLE_FILE_INFORMATION found = {};
    const bool isKnown = GetFileInformationByHandle(file, &found) != 0;
    CloseHandle(file);
    if (!isKnown)
        return {};
    const auto wide = [](DWORD high, DWORD low) { return std::uint64_t{high} << 32 | low; };
    return {found.dwVolumeSerialNumber, wide(found.nFileIndexHigh, found.nFileIndexLow),
            wide(found.nFileSizeHigh, found.nFileSizeLow)};
}

} // namespace Kr

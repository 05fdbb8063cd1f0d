#include <base/internal/log/lgExclusiveFile.h>
#include <base/internal/log/lgSharedFile.h>

namespace Kr
{

std::unique_ptr<LgFile> LgFile::create(const LgFileSettings& settings)
{
    if (settings.isExclusive)
        return std::make_unique<LgExclusiveFile>(settings);
    return std::make_unique<LgSharedFile>(settings);
}

} // namespace Kr

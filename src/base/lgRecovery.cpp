#include <base/lgRecovery.h>

#include <base/assert.h>
#include <base/internal/log/lgRescue.h>

#include <filesystem>
#include <system_error>

namespace Kr
{

LgRecovery::Result LgRecovery::recover(const char* directory)
{
    KR_ASSERT(directory != nullptr);
    std::error_code error;
    const std::filesystem::path path = std::filesystem::absolute(directory, error);
    return LgRescue(error ? directory : path.lexically_normal().string(), nullptr).run();
}

} // namespace Kr

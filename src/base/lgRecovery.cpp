#include <base/lgRecovery.h>

#include <base/assert.h>
#include <base/internal/log/lgRescue.h>

#include <filesystem>
#include <string>
#include <system_error>
#include <utility>

namespace Kr
{

LgRecovery::Result LgRecovery::recover(const char* directory)
{
    KR_ASSERT(directory != nullptr);
    std::error_code error;
    const std::filesystem::path path = std::filesystem::absolute(directory, error);
    const std::string folder = error ? directory : path.lexically_normal().string();
    LgRescue::Result result = LgRescue(folder, nullptr).run();
    return {result.processes, result.messages, result.lost, std::move(result.problems)};
}

} // namespace Kr

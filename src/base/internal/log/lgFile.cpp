#include <base/internal/log/lgFile.h>

namespace Kr
{

LgFile::~LgFile() = default;

bool LgFile::replaceEnd(std::size_t, const char*, std::size_t) noexcept
{
    return false;
}

std::size_t LgFile::getPending() const noexcept
{
    return 0;
}

void LgFile::rest() noexcept
{
}

std::string LgFile::takeNews()
{
    return {};
}

} // namespace Kr

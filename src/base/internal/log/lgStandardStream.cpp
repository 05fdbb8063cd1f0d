#include <base/internal/log/lgStandardStream.h>

namespace Kr
{

bool LgStandardStream::append(const char* text, std::size_t size) noexcept
{
    return std::fwrite(text, 1, size, _stream) == size && std::fflush(_stream) == 0;
}

} // namespace Kr

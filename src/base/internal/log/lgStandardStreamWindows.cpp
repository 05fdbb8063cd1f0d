#include <base/internal/log/lgStandardStream.h>

#include <platform/logFile.h>

namespace Kr
{

namespace
{

constexpr unsigned patience = 1000;

} // namespace

/// The first failure may take a while, those after it are told at once.
std::size_t LgStandardStream::append(const char* text, std::size_t size) noexcept
{
    const std::size_t written = krWriteStandard(_stream, text, size, _isStuck ? 0 : patience);
    _isStuck = written != size;
    if (_isStuck)
        _problem.take();
    return written;
}

void LgStandardStream::complain(const std::string& text) noexcept
{
    static_cast<void>(krWriteStandard(stderr, text.data(), text.size(), patience));
}

} // namespace Kr

#pragma once

/// @file
/// Internal to the library: one of the process's standard streams as a file of the log.

#include <base/internal/log/lgFile.h>

#include <cstdio>
#include <string>

namespace Kr
{

class LgStandardStream : public LgFile
{
public:
    explicit LgStandardStream(std::FILE* stream)
        : _stream(stream)
    {
    }

    bool append(const char* text, std::size_t size) noexcept override;
    bool sync() noexcept override { return true; }
    std::string getProblem() const override { return "The stream does not take it."; }

private:
    std::FILE* const _stream;
};

} // namespace Kr

#pragma once

/// @file
/// Internal to the library: one of the process's standard streams as a file of the log.
///
/// What a pipe takes of a text is not written again, and a reader that has stopped does not stop
/// the program: after a second the text waits elsewhere.

#include <base/internal/log/lgFile.h>
#include <base/internal/log/lgProblem.h>

#include <chrono>
#include <cstdio>
#include <string>

namespace Kr
{

class LgStandardStream : public LgFile
{
public:
    /// How long a call may take, also where the system has no limit for it.
    static constexpr std::chrono::seconds patience{2};

    explicit LgStandardStream(std::FILE* stream)
        : _stream(stream)
    {
    }

    std::size_t append(const char* text, std::size_t size) noexcept override;
    bool isFar() const noexcept override { return _isFar; }
    bool sync() noexcept override { return true; }
    std::string getProblem() const override { return _problem.getText(); }

    /// Writes what the logger has to say about itself on the standard error stream. May be called
    /// by any thread.
    static void complain(const std::string& text) noexcept;

private:
    std::FILE* const _stream;
    LgProblem _problem;
    bool _isStuck = false; ///< took not everything last time
    bool _isFar = true;    ///< before that is known
};

} // namespace Kr

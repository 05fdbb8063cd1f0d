#pragma once

/// @file
/// Internal to the library: a file of the log that processes share, and where a process goes on
/// while it cannot have its turn.
///
/// Whoever holds the lock for long, a process that was stopped in the middle of a write, costs the
/// others one wait: then each goes on in a file of its own, `events-4711.log` beside `events.log`,
/// and comes back as soon as it can.

#include <base/internal/log/lgAppendedFile.h>
#include <base/internal/log/lgFile.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

namespace Kr
{

class LgSharedFile : public LgFile
{
public:
    explicit LgSharedFile(const LgFileSettings& settings);

    /// The path of the file in which a process goes on.
    static std::string getOwnPath(const std::string& path, std::uint32_t process);

    ~LgSharedFile() override;

    std::size_t append(const char* text, std::size_t size) noexcept override;
    bool isFar() const noexcept override;
    bool sync() noexcept override;
    void rest() noexcept override;
    std::string getProblem() const override;
    std::string takeNews() override;

private:
    std::size_t performAppend(const char* text, std::size_t size);
    std::size_t appendToOwn(const char* text, std::size_t size);
    void goAway();
    void comeBack() noexcept;

    const LgFileSettings _settings;
    LgAppendedFile _shared;
    std::unique_ptr<LgAppendedFile> _own; ///< null: it was never needed
    LgProblem _problem;
    std::chrono::steady_clock::time_point _nextTry;
    bool _isAway = false;
    bool _hasNews = false;
    bool _hasComplained = false;
};

} // namespace Kr

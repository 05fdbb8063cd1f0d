#pragma once

/// @file
/// Internal to the library: a file that one process makes anew and keeps to itself, from its first
/// text on.

#include <base/internal/log/lgFile.h>
#include <base/internal/log/lgInterProcessLock.h>
#include <base/internal/log/lgProblem.h>

#include <memory>
#include <string>

class KrLogFile;

namespace Kr
{

class LgExclusiveFile : public LgFile
{
public:
    explicit LgExclusiveFile(const LgFileSettings& settings);
    ~LgExclusiveFile() override;

    std::size_t append(const char* text, std::size_t size) noexcept override;
    bool replaceEnd(std::size_t removed, const char* text, std::size_t size) noexcept override;
    bool isFar() const noexcept override;
    bool sync() noexcept override;
    std::string getProblem() const override { return _problem.getText(); }

private:
    bool open();
    bool makeAnew(KrLogFile& file);
    bool failed() noexcept;

    const LgFileSettings _settings;
    LgInterProcessLock _lock; ///< held as long as the file is open
    std::unique_ptr<KrLogFile> _file;
    LgProblem _problem;
};

} // namespace Kr

#pragma once

/// @file
/// Internal to the library: a file whose calls have a limit in time: a file system may be out of
/// reach, and nobody may read a pipe.
///
/// Where the file is known as near, the caller makes the calls: to hand them over would cost more
/// than most of them do. A far one is served by the helper: a call that takes longer fails for now.
/// It goes on nevertheless, with a copy of its text, and until it has come back every other one
/// fails at once: `getPending` tells of how many bytes it is not known whether they were written.

#include <base/internal/log/lgFile.h>
#include <base/internal/log/lgHelper.h>

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>

namespace Kr
{

class LgTimedFile : public LgFile
{
public:
    /// The file of the system with those settings, which has five seconds for a call.
    static std::unique_ptr<LgFile> create(const LgFileSettings& settings,
                                          const std::shared_ptr<LgHelper>& helper);

    /// @param helper makes the calls; files may share it
    /// @param patience how long a call may take
    LgTimedFile(std::unique_ptr<LgFile> file, std::shared_ptr<LgHelper> helper,
                std::chrono::milliseconds patience);
    ~LgTimedFile() override;

    std::size_t append(const char* text, std::size_t size) noexcept override;
    bool replaceEnd(std::size_t removed, const char* text, std::size_t size) noexcept override;
    bool isFar() const noexcept override { return false; }
    bool sync() noexcept override;
    void rest() noexcept override;
    std::string getProblem() const override;
    std::string takeNews() override;
    std::size_t getPending() const noexcept override { return _pending; }

private:
    class Call;
    using Action = std::size_t (*)(Call& call);

    bool isBack() noexcept;
    bool run(Action action) noexcept;
    std::size_t write(const char* text, std::size_t size, std::size_t removed,
                      Action action) noexcept;

    std::size_t writeDirectly(const char* text, std::size_t size, std::size_t removed) noexcept;

    const std::shared_ptr<LgHelper> _helper;
    const std::chrono::milliseconds _patience;
    const std::shared_ptr<Call> _call; ///< the last one
    std::size_t _pending = 0;
    bool _isLate = false; ///< the last call had not come back when it was looked at last
};

} // namespace Kr

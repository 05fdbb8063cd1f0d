#pragma once

/// @file
/// Internal to the library: writes what dead processes have left in a log folder into the logs that
/// they would have written it to.

#include <base/internal/log/lgRingImage.h>
#include <base/internal/log/lgSettings.h>

#include <cstdint>
#include <string>
#include <vector>

namespace Kr
{

class LgFoundRings;

/// Its logs are those in the folder, and those of the settings of the process that looks, if there
/// are any: what a file says of other paths is not trusted, and goes to the folder's own logs.
class LgRescue
{
public:
    struct Result
    {
        unsigned int processes = 0; ///< of which something was recovered
        std::uint64_t messages = 0;
        std::uint64_t lost = 0; ///< messages that those processes had counted as lost
        std::vector<std::string> problems;
    };

    /// @param own the settings of this process, or null; must outlive it
    LgRescue(const std::string& folder, const LgSettings* own);

    Result run();

private:
    bool isUsable() const;
    void rescue(const std::string& path);
    bool read(LgFoundRings& rings, LgRingImage& image) const;
    LgSettings makeSettings(const LgRingImage& image) const;
    LgDestination findDestination(const LgRingImage& image, std::size_t level) const;
    bool isTrusted(const std::string& path) const;
    std::vector<LgRingImage::Message> findUnwritten(LgRingImage& image,
                                                    const LgSettings& settings) const;
    void searchLog(const LgRingImage& image, const LgSettings& settings, std::size_t level,
                   const std::vector<LgRingImage::Message>& messages,
                   std::vector<bool>& isWritten) const;
    bool write(const LgRingImage& image, const LgSettings& settings,
               const std::vector<LgRingImage::Message>& messages);

    const std::string _folder;
    const LgSettings* const _own;
    Result _result;
};

} // namespace Kr

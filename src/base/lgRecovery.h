#pragma once

/// @file
/// What killed processes have left of their log.
///
/// With `KR_LOG_SURVIVE=on` what waits to be written lies in a file of the log directory, and
/// outlives a process that is killed or crashes. The next process that starts with that directory
/// writes it into the logs, with its times, levels, threads and groups, behind a line that says so.
/// Where there is no next process, this does it, or the program `kr-log`:
/// @code
/// const Kr::LgRecovery::Result result = Kr::LgRecovery::recover("/var/log/viewer");
/// std::cout << result.messages << " messages of " << result.processes << " processes\n";
/// for (const std::string& problem : result.problems)
///     std::cerr << problem << '\n';
/// @endcode
/// What stands in a log already is not written again. Processes that are alive are not touched. A
/// file that is damaged does no harm: what fits together in it is recovered. Its paths are not
/// trusted: what did not go to a log in the directory goes to its `events.log` and `prof.log`.

#include <base/krBaseApi.h>

#include <cstdint>
#include <string>
#include <vector>

namespace Kr
{

class KR_BASE_API LgRecovery
{
public:
    struct Result
    {
        unsigned int processes = 0; ///< of which something was recovered
        std::uint64_t messages = 0;
        std::uint64_t lost = 0; ///< messages that those processes had counted as lost
        std::vector<std::string> problems;
    };

    /// Recovers what is left in that log directory. A problem with one file leaves that as it is,
    /// and the others go on. Raises `ExInternalError` for a null pointer.
    static Result recover(const char* directory);
};

} // namespace Kr

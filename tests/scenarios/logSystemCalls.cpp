// Every system call that the log's output makes fails in turn, once or for good. The host's calls
// are answered here, for the files of the log alone.

#include "scenario.h"

#include <base/inInitGuard.h>
#include <base/log.h>

#include <logTestFiles.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <map>
#include <optional>

#include <dlfcn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

constexpr int noCall = 1 << 30;

std::atomic<bool> isArmed{false};
std::atomic<int> calls{0};
int failing = noCall; ///< the number of the first call that fails
int lastFailing = 0;
std::string folderPath;
std::string synced; ///< the paths that were, each in a line

std::string pathOf(int descriptor)
{
    char path[1024] = "";
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    const ssize_t length = ::readlink(link.c_str(), path, sizeof path - 1);
    return std::string(path, length > 0 ? static_cast<std::size_t>(length) : 0);
}

/// Whether this call is one that fails.
bool fails(const std::string& path)
{
    if (!isArmed || path.find(folderPath) == path.npos)
        return false;
    const int call = ++calls;
    errno = failing == lastFailing ? EIO : ENOSPC;
    return call >= failing && call <= lastFailing;
}

/// The host's answer, or that the call has failed.
template <class Result, class... Arguments>
Result answer(const char* name, const std::string& path, Arguments... arguments)
{
    if (fails(path))
        return -1;
    return reinterpret_cast<Result (*)(Arguments...)>(::dlsym(RTLD_NEXT, name))(arguments...);
}

} // namespace

extern "C"
{
    // The two that take a varying number of arguments are not declared here by the host's header.
    int open(const char* path, int flags, mode_t mode)
    {
        return answer<int>("open", path, path, flags, mode);
    }

    int fcntl(int file, int command, void* argument)
    {
        return answer<int>("fcntl", pathOf(file), file, command, argument);
    }

    ssize_t write(int file, const void* data, std::size_t size)
    {
        return answer<ssize_t>("write", pathOf(file), file, data, size);
    }

    ssize_t pread(int file, void* data, std::size_t size, off_t at)
    {
        return answer<ssize_t>("pread", pathOf(file), file, data, size, at);
    }

    int ftruncate(int file, off_t size) noexcept
    {
        return answer<int>("ftruncate", pathOf(file), file, size);
    }

    int fstat(int file, struct stat* status) noexcept
    {
        return answer<int>("fstat", pathOf(file), file, status);
    }

    int lstat(const char* path, struct stat* status) noexcept
    {
        return answer<int>("lstat", path, path, status);
    }

    int mkdir(const char* path, mode_t mode) noexcept
    {
        return answer<int>("mkdir", path, path, mode);
    }

    int rename(const char* from, const char* to) noexcept
    {
        return answer<int>("rename", from, from, to);
    }

    /// Notes the path; the test does not wait for the disk.
    int fsync(int file)
    {
        const std::string path = pathOf(file);
        if (fails(path))
            return -1;
        synced += path + '\n';
        return 0;
    }
}

namespace
{

// --- the program -------------------------------------------------------------------------------

constexpr int messages = 8;

void logWithRotation(const Kr::LgMinorGroup& group)
{
    const std::string filler(100, '.');
    for (int i = 0; i <= messages; ++i)
    {
        KR_LOG(group, Warning) << "message " << i << filler.c_str() << "end";
        if (i % 2 == 1)
            Kr::LgLog::flush();
    }
    KR_LOG(group, FatalError) << "the end";
}

/// Runs with some calls failing, and tells on the standard output how many there were, what was
/// lost and what came to the disk.
void victim(int firstFailing, bool forGood)
{
    failing = firstFailing;
    lastFailing = forGood ? noCall : firstFailing;
    const std::string directory = "--logger.directory=" + folderPath;
    const char* const words[] = {"victim", directory.c_str(), "--logger.maxSize=500",
                                 "--logger.maxFiles=99"};
    int argc = 4;
    const char* const* argv = words;
    isArmed = true;
    std::optional<Kr::InInitGuard> guard(std::in_place, argc, argv);
    logWithRotation({Kr::LgMajorGroup::getInstanceForName("Test"), "Calls"});
    guard.reset();
    isArmed = false;
    std::printf("calls %d lost %lu\n%s", calls.load(),
                static_cast<unsigned long>(Kr::LgLog::getLostCount()), synced.c_str());
    std::fflush(stdout);
}

// --- the cases ---------------------------------------------------------------------------------

/// Where the victim logs, and what became of it.
struct Run
{
    explicit Run(int firstFailing, bool forGood = false)
    {
        folderPath = folder / "logs";
        const pid_t process = ::fork();
        if (process == 0)
        {
            const bool isRedirected =
                std::freopen((folder / "out").c_str(), "w", stdout) != nullptr &&
                std::freopen((folder / "err").c_str(), "w", stderr) != nullptr;
            victim(firstFailing, forGood);
            std::_Exit(isRedirected ? 0 : 1);
        }
        ::waitpid(process, &status, 0);
        std::sscanf(LogTest::readFile(folder / "out").c_str(), "calls %d lost %d", &made, &lost);
        std::error_code error;
        for (const auto& entry : std::filesystem::directory_iterator(folder / "logs", error))
            for (const std::string& line : LogTest::readLines(entry.path().string()))
                read(line);
    }

    void read(const std::string& line)
    {
        const std::string text = LogTest::textOf(line);
        int number = -1;
        hasEnd = hasEnd || text == "the end";
        if (std::sscanf(text.c_str(), "message %d", &number) != 1)
            return;
        const bool isWhole = text.size() > 3 && text.compare(text.size() - 3, 3, "end") == 0;
        ++(isWhole ? whole : torn)[number];
    }

    const LogTest::Folder folder;
    int status = -1;
    int made = 0;
    int lost = -1;
    std::map<int, int> whole; ///< how often each message was found
    std::map<int, int> torn;
    bool hasEnd = false;
};

/// Each message is in a file, once, or is counted.
void eachFails()
{
    const int made = Run(noCall).made;
    SCENARIO_CHECK(made > 100 && made < 1000);
    for (const bool forGood : {false, true})
        for (int i = 1; i <= made; ++i)
        {
            const Run run(i, forGood);
            const auto isOnce = [](const auto& each) { return each.second == 1; };
            const bool areOnce = std::all_of(run.whole.begin(), run.whole.end(), isOnce);
            const int found = static_cast<int>(run.whole.size());
            const bool isRight = run.status == 0 && run.torn.empty() && areOnce &&
                                 found + run.lost - (run.hasEnd ? 0 : 1) == messages + 1;
            if (!isRight)
                std::fprintf(stderr, "call %d %s: status %d, %d found, %d lost\n", i,
                             forGood ? "for good" : "", run.status, found, run.lost);
            SCENARIO_CHECK(isRight);
        }
}

/// A fatal error takes everything before it to the disk, also what was rotated, and the names.
void syncs()
{
    const Run run(noCall);
    const std::string out = LogTest::readFile(run.folder / "out");
    const auto isSynced = [&](const std::string& path)
    { return out.find('\n' + path + '\n') != out.npos; };
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(run.folder / "logs"))
        if (entry.path().extension() != ".lock")
        {
            ++files;
            SCENARIO_CHECK(isSynced(entry.path().string()));
        }
    SCENARIO_CHECK(files > 3);
    SCENARIO_CHECK(isSynced(run.folder / "logs"));
}

} // namespace

int main(int argc, char** argv)
{
    const Scenario::Case cases[] = {{"eachFails", eachFails}, {"syncs", syncs}};
    return Scenario::run(cases, argc, argv);
}

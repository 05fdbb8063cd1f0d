// Every system call that the log's output makes fails in turn, once or for good, or never comes
// back. The host's calls are answered here, for the files of the log alone.

#include "scenario.h"

#include <base/inInitGuard.h>
#include <base/log.h>

#include <logTestFiles.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <list>
#include <map>
#include <optional>

#include <dlfcn.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

constexpr int noCall = 1 << 30;

std::atomic<bool> isArmed{false};
std::atomic<int> calls{0};
int failing = noCall; ///< the number of the first call that fails
int lastFailing = 0;
bool hangs = false; ///< instead of failing
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
    const bool isHit = call >= failing && call <= lastFailing;
    while (isHit && hangs)
        ::pause();
    errno = failing == lastFailing ? EIO : ENOSPC;
    return isHit;
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

    /// Where calls hang, the files are another machine's.
    int fstatfs(int file, struct statfs* system) noexcept
    {
        const int result = answer<int>("fstatfs", pathOf(file), file, system);
        if (hangs)
            system->f_type = NFS_SUPER_MAGIC;
        return result;
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

constexpr int rounds = 9;
constexpr int numMessages = 2 * rounds + 1;

/// Into two logs, with rotation.
void logWithRotation(const Kr::LgMinorGroup& group)
{
    const std::string filler(100, '.');
    for (int i = 0; i < rounds; ++i)
    {
        KR_LOG(group, Warning) << "message " << 2 * i << filler.c_str() << "end";
        KR_LOG(group, Profiling) << "message " << 2 * i + 1 << "end";
        if (i % 2 == 1)
            Kr::LgLog::flush();
    }
    KR_LOG(group, FatalError) << "message " << 2 * rounds << " end";
}

enum class Fault
{
    once,
    forGood,
    hang
};

/// Runs with some calls failing, and tells on the standard output how many there were, what was
/// lost, how long it took, and what came to the disk.
void victim(int firstFailing, Fault fault)
{
    failing = firstFailing;
    lastFailing = fault == Fault::forGood ? noCall : firstFailing;
    hangs = fault == Fault::hang;
    const std::string directory = "--logger.directory=" + folderPath;
    const char* const words[] = {"victim", directory.c_str(), "--logger.groups=Test=Profiling",
                                 "--logger.maxSize=500", "--logger.maxFiles=99"};
    int argc = 5;
    const char* const* argv = words;
    isArmed = true;
    const auto start = std::chrono::steady_clock::now();
    std::optional<Kr::InInitGuard> guard(std::in_place, argc, argv);
    logWithRotation({Kr::LgMajorGroup::getInstanceForName("Test"), "Calls"});
    guard.reset();
    isArmed = false;
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    std::printf("calls %d lost %lu in %f\n%s", calls.load(),
                static_cast<unsigned long>(Kr::LgLog::getLostCount()), taken.count(),
                synced.c_str());
    std::fflush(stdout);
}

// --- the cases ---------------------------------------------------------------------------------

/// Where a victim logs, and what became of it.
class Run
{
public:
    explicit Run(int firstFailing = noCall, Fault fault = Fault::once)
        : _name("call " + std::to_string(firstFailing) + " of kind " +
                std::to_string(static_cast<int>(fault)))
        , _fault(fault)
    {
        folderPath = folder / "logs";
        _process = ::fork();
        if (_process != 0)
            return;
        const bool isRedirected = std::freopen((folder / "out").c_str(), "w", stdout) != nullptr &&
                                  std::freopen((folder / "err").c_str(), "w", stderr) != nullptr;
        victim(firstFailing, fault);
        std::_Exit(isRedirected ? 0 : 1);
    }

    /// Returns how many calls there were.
    int finish()
    {
        ::waitpid(_process, &_status, 0);
        int made = 0;
        std::sscanf(LogTest::readFile(folder / "out").c_str(), "calls %d lost %d in %lf", &made,
                    &_lost, &_seconds);
        std::error_code error;
        for (const auto& entry : std::filesystem::directory_iterator(folder / "logs", error))
            for (const std::string& line : LogTest::readLines(entry.path().string()))
                read(line);
        return made;
    }

    /// Each message is in a file, once, or is counted; and nobody waited for long. What a call was
    /// writing that never came back may be both.
    void check() const
    {
        const auto isOnce = [](const auto& each) { return each.second == 1; };
        const bool areOnce = std::all_of(_whole.begin(), _whole.end(), isOnce);
        const int found = static_cast<int>(_whole.size());
        const bool isRight =
            _status == 0 && _torn.empty() && areOnce && _seconds < 20 &&
            (_fault == Fault::hang ? found + _lost >= numMessages : found + _lost == numMessages);
        if (!isRight)
            std::fprintf(stderr, "%s: status %d, %d found, %d lost, %f s\n", _name.c_str(), _status,
                         found, _lost, _seconds);
        SCENARIO_CHECK(isRight);
    }

    const LogTest::Folder folder;

private:
    void read(const std::string& line)
    {
        const std::string text = LogTest::textOf(line);
        int number = -1;
        if (std::sscanf(text.c_str(), "message %d", &number) != 1)
            return;
        const bool isWhole = text.size() > 3 && text.compare(text.size() - 3, 3, "end") == 0;
        ++(isWhole ? _whole : _torn)[number];
    }

    const std::string _name;
    const Fault _fault;
    pid_t _process = 0;
    int _status = -1;
    int _lost = -1;
    double _seconds = 0;
    std::map<int, int> _whole; ///< how often each message was found
    std::map<int, int> _torn;
};

void eachFails()
{
    const int made = Run().finish();
    SCENARIO_CHECK(made > 100 && made < 1000);
    for (const Fault fault : {Fault::once, Fault::forGood})
        for (int i = 1; i <= made; ++i)
        {
            Run run(i, fault);
            run.finish();
            run.check();
        }
}

/// All at once, as they do nothing but wait.
void eachHangs()
{
    const int made = Run().finish();
    std::list<Run> runs;
    for (int i = 1; i <= made; ++i)
        runs.emplace_back(i, Fault::hang);
    for (Run& run : runs)
    {
        run.finish();
        run.check();
    }
}

/// A fatal error takes everything before it to the disk, also what was rotated, and the names.
void syncs()
{
    Run run;
    run.finish();
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
    const Scenario::Case cases[] = {
        {"eachFails", eachFails}, {"eachHangs", eachHangs}, {"syncs", syncs}};
    return Scenario::run(cases, argc, argv);
}

// What other processes, other users and full disks do to the log on a POSIX host.

#include "scenario.h"

#include <base/inInitGuard.h>
#include <base/internal/log/lgFile.h>
#include <base/internal/log/lgInterProcessLock.h>
#include <base/lgTimeline.h>
#include <base/log.h>
#include <base/osEnv.h>

#include <logTestFiles.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

using LogTest::Folder;
using LogTest::readFile;
using LogTest::readLines;
using std::chrono::steady_clock;

std::string ownPath;

void set(const std::string& name, const std::string& value)
{
    Kr::OsEnv::putVariable((name + '=' + value).c_str());
}

bool append(Kr::LgFile& file, const std::string& text)
{
    return file.append(text.data(), text.size()) == text.size();
}

Kr::LgFileSettings at(const std::string& path)
{
    Kr::LgFileSettings settings;
    settings.path = path;
    return settings;
}

std::size_t countIn(const std::string& text, const std::string& part)
{
    std::size_t count = 0;
    for (std::size_t i = text.find(part); i != text.npos; i = text.find(part, i + 1))
        ++count;
    return count;
}

/// A process that runs `body` and is killed at the end, if it is there still.
class Child
{
public:
    template <class Body>
    explicit Child(Body body)
        : _process(::fork())
    {
        if (_process != 0)
            return;
        body();
        std::_Exit(0);
    }

    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    ~Child() { kill(); }

    void kill()
    {
        if (_process == 0)
            return;
        ::kill(_process, SIGKILL);
        ::waitpid(_process, nullptr, 0);
        _process = 0;
    }

    /// Waits until it has stopped itself, or ended.
    void waitForStop() const
    {
        int status = 0;
        ::waitpid(_process, &status, WUNTRACED);
    }

private:
    pid_t _process;
};

/// Holds the lock of the file, stopped.
auto holdingLock(const std::string& path)
{
    return [path]
    {
        Kr::LgInterProcessLock lock(path);
        lock.acquire(std::chrono::seconds(0));
        std::raise(SIGSTOP);
    };
}

// --- the programs ------------------------------------------------------------------------------

constexpr int messages = 5000;

void writer()
{
    int argc = 0;
    const char* const* argv = nullptr;
    const Kr::InInitGuard guard(argc, argv);
    const Kr::LgMinorGroup group(Kr::LgMajorGroup::getInstanceForName("Test"), "Faults");
    for (int i = 0; i < messages; ++i)
        KR_LOG(group, Warning) << "message " << i << ".";
}

void limitFileSize(rlim_t size)
{
    rlimit limit = {};
    SCENARIO_CHECK(::getrlimit(RLIMIT_FSIZE, &limit) == 0);
    limit.rlim_cur = size;
    SCENARIO_CHECK(::setrlimit(RLIMIT_FSIZE, &limit) == 0);
}

/// The log goes to the standard output, so that the disk is full for the timeline alone.
void spansOnAFullDisk()
{
    limitFileSize(100000);
    int argc = 0;
    const char* const* argv = nullptr;
    const Kr::InInitGuard guard(argc, argv);
    for (int i = 0; i < messages; ++i)
    {
        const Kr::LgSpan span("part");
        if (i % 1000 == 999)
            Kr::LgLog::flush();
    }
    if (std::getenv("KR_TEST_RECOVERS") != nullptr)
        limitFileSize(RLIM_INFINITY);
}

// --- the cases ---------------------------------------------------------------------------------

/// Whatever those who read the log lock, they hinder nobody who writes it.
void readersLocks()
{
    const Folder folder;
    const auto file = Kr::LgFile::create(at(folder / "events.log"));
    SCENARIO_CHECK(append(*file, "first\n"));
    const int reader = ::open((folder / "events.log").c_str(), O_RDWR);
    struct flock whole = {};
    whole.l_type = F_WRLCK;
    SCENARIO_CHECK(::flock(reader, LOCK_EX) == 0 && ::fcntl(reader, F_OFD_SETLK, &whole) == 0);
    const auto start = steady_clock::now();
    Kr::LgFileSettings settings = at(folder / "events.log");
    settings.maxSize = 1;
    SCENARIO_CHECK(append(*Kr::LgFile::create(settings), "rotated\n"));
    SCENARIO_CHECK(append(*file, "second\n"));
    SCENARIO_CHECK(steady_clock::now() - start < std::chrono::seconds(5));
    SCENARIO_CHECK(readFile(folder / "events.log") == "rotated\nsecond\n");
    ::close(reader);
}

/// The lock ends with the process that holds it, not with those that it has forked.
void inheritedLock()
{
    const Folder folder;
    int ends[2] = {};
    SCENARIO_CHECK(::pipe(ends) == 0);
    Child holder(
        [&]
        {
            Kr::LgInterProcessLock lock(folder / "events.log");
            lock.acquire(std::chrono::seconds(0));
            if (::fork() == 0)
            {
                ::close(ends[1]);
                char byte = 0;
                static_cast<void>(::read(ends[0], &byte, 1)); // until the case ends
                std::_Exit(0);
            }
            std::raise(SIGSTOP);
        });
    ::close(ends[0]);
    holder.waitForStop();
    using Outcome = Kr::LgInterProcessLock::Outcome;
    Kr::LgInterProcessLock lock(folder / "events.log");
    SCENARIO_CHECK(lock.acquire(std::chrono::seconds(0)) == Outcome::busy);
    holder.kill();
    // The forked one may still be on its way out of `fork`.
    SCENARIO_CHECK(lock.acquire(std::chrono::seconds(5)) == Outcome::held);
    ::close(ends[1]);
}

/// Processes that cannot have the lock rotate nothing of what others write: every message is there.
void stoppedHolder()
{
    const Folder folder;
    set("KR_LOG_DIR", folder.getPath());
    set("KR_BLOCKING_TRACE", "on");
    set("KR_LOG_MAX_SIZE", "32K");
    set("KR_LOG_MAX_FILES", "99");
    const Child holder(holdingLock(folder / "events.log"));
    holder.waitForStop();
    const std::string run = "'" + ownPath + "' run writer & ";
    const auto start = steady_clock::now();
    SCENARIO_CHECK(std::system(("(" + run + run + run + "wait) 2>" + folder / "err").c_str()) == 0);
    SCENARIO_CHECK(steady_clock::now() - start < std::chrono::seconds(20));
    SCENARIO_CHECK(readLines(folder / "err").size() == 3);
    std::size_t found = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder.getPath()))
        found += countIn(readFile(entry.path().string()), " message ");
    SCENARIO_CHECK(found == 3 * messages);
    SCENARIO_CHECK(!std::filesystem::exists(folder / "events.log.1"));
}

/// Nothing is written through a link, whatever its name stands for, and files are made for their
/// owner.
void links()
{
    ::umask(0);
    const Folder folder;
    std::ofstream(folder / "private") << "private";
    for (const char* name : {"events.log", "timeline.json", "rotated.log.1", "locked.log.lock"})
        SCENARIO_CHECK(::symlink((folder / "private").c_str(), (folder / name).c_str()) == 0);
    Kr::LgFileSettings settings = at(folder / "timeline.json");
    settings.isExclusive = true;
    for (const auto& each : {at(folder / "events.log"), settings})
    {
        const auto file = Kr::LgFile::create(each);
        SCENARIO_CHECK(!append(*file, "stranger\n"));
        SCENARIO_CHECK(file->getProblem() ==
                       "It is a link, and the log is not written through links.");
    }
    for (const char* name : {"rotated.log", "locked.log", "made/other.log"})
    {
        settings = at(folder / name);
        settings.maxSize = 1;
        const auto file = Kr::LgFile::create(settings);
        SCENARIO_CHECK(append(*file, "one\n") && append(*file, "two\n"));
    }
    SCENARIO_CHECK(readFile(folder / "private") == "private");
    SCENARIO_CHECK(readFile(folder / "rotated.log.1") == "one\n");
    SCENARIO_CHECK(readFile(folder / "locked.log") == "one\ntwo\n"); // no lock, no rotation
    const auto modeOf = [&](const std::string& name)
    {
        struct stat status = {};
        return ::stat((folder / name).c_str(), &status) == 0 ? status.st_mode & 0777 : 0;
    };
    SCENARIO_CHECK(modeOf("made") == 0755 && modeOf("made/other.log") == 0640);
    SCENARIO_CHECK(modeOf("made/other.log.1") == 0640 && modeOf("made/other.log.lock") == 0600);
    // In a folder where others may write, a second name may stand for anything.
    ::chmod((folder / "made").c_str(), 01777);
    SCENARIO_CHECK(::link((folder / "private").c_str(), (folder / "made/second.log").c_str()) == 0);
    SCENARIO_CHECK(!append(*Kr::LgFile::create(at(folder / "made/second.log")), "stranger\n"));
    SCENARIO_CHECK(readFile(folder / "private") == "private");
}

/// The default folder is its user's alone, or is not used.
void defaultFolder()
{
    const Folder folder;
    set("TMPDIR", folder.getPath());
    set("USER", "anna");
    set("KR_LOG_DIR", "");
    set("KR_LOG_GROUPS", "Test=Warning");
    const std::string logs = folder / "KRbase-anna";
    const auto run = [&]
    {
        SCENARIO_CHECK(std::system(("'" + ownPath + "' run writer 2>" + folder / "err").c_str()) ==
                       0);
        return countIn(readFile(folder / "err"), "not this user's alone") == 0;
    };
    SCENARIO_CHECK(run() && !readFile(logs + "/events.log").empty());
    struct stat status = {};
    SCENARIO_CHECK(::stat(logs.c_str(), &status) == 0 && (status.st_mode & 0777) == 0700);
    std::filesystem::remove_all(logs);
    SCENARIO_CHECK(::mkdir(logs.c_str(), 0700) == 0 && ::chmod(logs.c_str(), 0777) == 0);
    SCENARIO_CHECK(!run() && std::filesystem::is_empty(logs));
    std::filesystem::rename(logs, folder / "elsewhere");
    ::chmod((folder / "elsewhere").c_str(), 0700);
    std::filesystem::create_directory_symlink(folder / "elsewhere", logs);
    SCENARIO_CHECK(!run() && std::filesystem::is_empty(logs));
}

/// A named pipe stops nobody, and what it takes is continued where it stopped.
void namedPipe()
{
    const Folder folder;
    SCENARIO_CHECK(::mkfifo((folder / "pipe.log").c_str(), 0600) == 0);
    const auto file = Kr::LgFile::create(at(folder / "pipe.log"));
    SCENARIO_CHECK(!append(*file, "nobody\n"));
    SCENARIO_CHECK(file->getProblem() == "Nobody reads it.");
    int reader = ::open((folder / "pipe.log").c_str(), O_RDONLY | O_NONBLOCK);
    std::string sent;
    for (int i = 0; i < 20000; ++i)
        sent += std::to_string(i) + " of the lines\n";
    std::string received;
    const auto start = steady_clock::now();
    for (std::size_t done = 0; received.size() < sent.size();)
    {
        done += file->append(sent.data() + done, sent.size() - done);
        char buffer[10000];
        const ssize_t count = ::read(reader, buffer, sizeof buffer);
        received.append(buffer, count > 0 ? static_cast<std::size_t>(count) : 0);
    }
    SCENARIO_CHECK(received == sent);
    SCENARIO_CHECK(steady_clock::now() - start < std::chrono::seconds(30));
    ::close(reader);
    SCENARIO_CHECK(!append(*file, "gone\n")); // and no signal ends the program
    reader = ::open((folder / "pipe.log").c_str(), O_RDONLY | O_NONBLOCK);
    SCENARIO_CHECK(append(*file, "back\n"));
    ::close(reader);
}

/// The log goes to a standard stream that does not block, and is read slowly.
void outputPipe()
{
    set("KR_LOG_WARNING", "stderr");
    set("KR_BLOCKING_TRACE", "on");
    int ends[2] = {};
    SCENARIO_CHECK(::pipe2(ends, O_NONBLOCK) == 0);
    const Child program(
        [&]
        {
            ::dup2(ends[1], STDERR_FILENO);
            ::close(ends[0]);
            ::close(ends[1]);
            ::execl(ownPath.c_str(), ownPath.c_str(), "run", "writer", nullptr);
        });
    ::close(ends[1]);
    std::string text;
    for (ssize_t count = -1; count != 0;)
    {
        char buffer[20000];
        count = ::read(ends[0], buffer, sizeof buffer);
        text.append(buffer, count > 0 ? static_cast<std::size_t>(count) : 0);
        std::this_thread::sleep_for(std::chrono::milliseconds(2)); // slower than the writer
    }
    std::size_t at = 0;
    for (int i = 0; i < messages && at != text.npos; ++i)
        at = text.find("message " + std::to_string(i) + ".\n", at);
    SCENARIO_CHECK(at != text.npos && countIn(text, " message ") == messages);
    ::close(ends[0]);
}

/// A timeline on a full disk stays whole, and tells how many events it lacks, or the program does.
void timelineOnAFullDisk()
{
    const Folder folder;
    set("KR_LOG_DIR", folder.getPath());
    set("KR_LOG_TIMELINE", "timeline.json");
    for (const bool recovers : {false, true})
    {
        set("KR_TEST_RECOVERS", recovers ? "1" : "");
        const std::string run = "'" + ownPath + "' run spansOnAFullDisk 2>";
        SCENARIO_CHECK(std::system((run + folder / "err").c_str()) == 0);
        const std::string timeline = readFile(folder / "timeline.json");
        const std::string told = recovers ? timeline : readFile(folder / "err");
        SCENARIO_CHECK(LogTest::JsonCheck::isValue(timeline));
        const std::size_t end = told.find(" events were lost");
        SCENARIO_CHECK(end != told.npos);
        const std::size_t begin = told.find_last_not_of("0123456789", end - 1) + 1;
        const std::size_t lost = std::stoul(told.substr(begin, end - begin));
        const std::size_t found = countIn(timeline, "\"cat\":\"span\"");
        const std::size_t rest = found + lost - messages; // what the library itself told
        SCENARIO_CHECK(found + lost >= messages && rest <= 10);
    }
}

constexpr Scenario::Case programs[] = {{"writer", writer}, {"spansOnAFullDisk", spansOnAFullDisk}};

} // namespace

int main(int argc, char** argv)
{
    ownPath = argv[0];
    if (argc == 3 && std::strcmp(argv[1], "run") == 0)
        return Scenario::run(programs, argc - 1, argv + 1);
    const Scenario::Case cases[] = {
        {"readersLocks", readersLocks},   {"inheritedLock", inheritedLock},
        {"stoppedHolder", stoppedHolder}, {"links", links},
        {"defaultFolder", defaultFolder}, {"namedPipe", namedPipe},
        {"outputPipe", outputPipe},       {"timelineOnAFullDisk", timelineOnAFullDisk},
    };
    return Scenario::run(cases, argc, argv);
}

// What only a POSIX host can do to files: disks that fill up, too many open files, other users,
// signals in the middle of a call, files that vanish while they are open. No handle stays open.

#include "scenario.h"

#include <base/osDir.h>
#include <base/osFile.h>
#include <base/osFileEx.h>
#include <base/osFileReader.h>
#include <base/osFileWriter.h>
#include <base/osSafeWriter.h>
#include <platform/platform.h>

#include <fileFolder.h>
#include <handleCount.h>
#include <systemCode.h>

#include <atomic>
#include <csignal>
#include <functional>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <grp.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using namespace Kr;
namespace fs = std::filesystem;

const OsFileTypes::Permissions permissions(3, 3, 0);
const std::string mebibyte = []
{
    std::string text(1 << 20, '\0');
    for (std::size_t i = 0; i < text.size(); ++i)
        text[i] = static_cast<char>(i * 7919 >> 5);
    return text;
}();

struct Step
{
    const char* what;
    std::function<void()> action;
    unsigned long code; ///< of the system's error; 0: none
};

void check(const std::vector<Step>& steps)
{
    const unsigned handles = HandleCount::get();
    for (const Step& step : steps)
    {
        const unsigned long code = codeOf(step.action);
        if (code != step.code)
            std::fprintf(stderr, "%s: %lu\n", step.what, code);
        SCENARIO_CHECK(code == step.code);
        Scenario::check(HandleCount::get() == handles, step.what, __LINE__);
    }
}

void write(const OsFilePath& path, const std::string& text)
{
    OsFileWriter(path, permissions, false).write(text.data(), text.size());
}

void replace(const OsFilePath& path, const std::string& text)
{
    OsSafeWriter writer(path);
    writer.write(text.data(), text.size());
    writer.commit();
}

void limit(decltype(RLIMIT_FSIZE) what, rlim_t count)
{
    rlimit limits = {};
    SCENARIO_CHECK(::getrlimit(what, &limits) == 0);
    limits.rlim_cur = count == RLIM_INFINITY ? limits.rlim_max : count;
    SCENARIO_CHECK(::setrlimit(what, &limits) == 0);
}

/// A limit on the size of files has the system's text for a full disk, and does not kill.
void fullDisk()
{
    std::signal(SIGXFSZ, SIG_DFL); // whoever starts this may have it ignored
    const FileFolder folder;
    const OsFilePath base(folder.getPath());
    const std::string large(5000, 'x');
    write(base + "large", large);
    write(base + "old", "old");
    limit(RLIMIT_FSIZE, 1000);
    OsFileWriter growing(base + "growing", permissions, true);
    growing.write("0123456789", 10);
    check({{"write", [&] { write(base + "part", large); }, 112},
           {"write on a full device", [&] { write("C:\\dev\\full", large); }, 112},
           {"copy", [&] { OsFile(base + "large").copyTo(base + "copy"); }, 112},
           {"copy to a full device", [&] { OsFile(base + "large").copyTo("/dev/full"); }, 112},
           {"reserve", [&] { growing.reserve(2000); }, 112},
           {"go on where it was", [&] { growing.write("x", 1); }, 0},
           {"replace", [&] { replace(base + "old", large); }, 112}});
    limit(RLIMIT_FSIZE, RLIM_INFINITY);
    check({{"reserve", [&] { growing.reserve(2000); }, 0}});
    SCENARIO_CHECK(FileFolder::read(folder / "growing") == "0123456789x" + std::string(1989, '\0'));
    SCENARIO_CHECK(FileFolder::read(folder / "part") == large.substr(0, 1000));
    SCENARIO_CHECK(FileFolder::read(folder / "old") == "old");
    SCENARIO_CHECK(OsDir(base).list().size() == 5);
}

void tooManyFiles()
{
    const FileFolder folder;
    const OsFilePath base(folder.getPath());
    for (const char* name : {"a", "held"})
        write(base + name, name);
    OsFile free(base + "a");
    OsFile held(base + "held");
    const OsFileReader reader(held);
    // All kinds of objects are met once: a sanitizer looks through a pipe at those that are new to
    // it.
    check({{"miss", [&] { OsFileReader(base + "none"); }, 2},
           {"list", [&] { OsDir(base).list(); }, 0},
           {"copy", [&] { free.copyTo(base + "none"); }, 0},
           {"replace", [&] { replace(base + "none", ""); }, 0}});
    limit(RLIMIT_NOFILE, 50);
    std::vector<int> all;
    for (int file = ::dup(0); file >= 0; file = ::dup(0))
        all.push_back(file);
    // Files cannot be counted without opening one; what they hold shows at the end.
    const std::function<void()> actions[] = {[&] { const OsFileReader other(free); },
                                             [&] { write(base + "new", ""); },
                                             [&] { static_cast<void>(free.getSize()); },
                                             [&] { OsDir(base).list(); },
                                             [&] { held.remove(); },
                                             [&] { held.renameTo(base + "b"); },
                                             [&] { free.copyTo(base + "b"); },
                                             [&] { replace(base + "a", "new"); }};
    for (const auto& action : actions)
        Scenario::check(codeOf(action) == 4, std::to_string(&action - actions).c_str(), __LINE__);
    SCENARIO_CHECK(free.getAccess() == 0);
    ::close(all.back()); // one is too few
    SCENARIO_CHECK(codeOf(actions[6]) == 4 && codeOf(actions[7]) == 4);
    ::close(all.front());
    check({{"copy", actions[6], 0}});
    limit(RLIMIT_NOFILE, RLIM_INFINITY);
    SCENARIO_CHECK(held.exists() && FileFolder::read(folder / "b") == "a");
}

void otherUsers()
{
    const FileFolder folder;
    const OsFilePath base(folder.getPath());
    constexpr unsigned nobody = 65534;
    // The new file is who the old one was.
    for (const mode_t mode : {0600U, 0640U, 0666U, 0755U})
    {
        const fs::path file = folder / "mode";
        struct stat before = {};
        struct stat after = {};
        write(base + "mode", "old");
        ::chmod(file.c_str(), mode);
        static_cast<void>(::chown(file.c_str(), nobody, nobody) == 0); // as only root may
        SCENARIO_CHECK(::stat(file.c_str(), &before) == 0);
        check({{"replace", [&] { replace(base + "mode", "new"); }, 0}});
        SCENARIO_CHECK(::stat(file.c_str(), &after) == 0 && after.st_ino != before.st_ino);
        SCENARIO_CHECK(after.st_mode == before.st_mode && after.st_uid == before.st_uid &&
                       after.st_gid == before.st_gid);
    }
    ::chmod(folder.getPath().c_str(), 0777);
    const bool isRoot = ::geteuid() == 0;
    if (isRoot)
        SCENARIO_CHECK(::setgroups(0, nullptr) == 0 && ::setegid(nobody) == 0 &&
                       ::seteuid(nobody) == 0);
    const OsFilePath closed = base + "closed";
    OsDir(closed).create();
    for (const OsFilePath& path : {base + "hidden", base + "free", closed + "file"})
        write(path, "old");
    ::chmod((folder / "hidden").c_str(), 0200);
    ::chmod((folder / "closed").c_str(), 0555);
    check({{"read", [&] { OsFileReader reader(base + "hidden"); }, 5},
           {"size", [&] { static_cast<void>(OsFile(base + "hidden").getSize()); }, 5},
           {"copy", [&] { OsFile(base + "hidden").copyTo(base + "copy"); }, 5},
           {"only write", [&] { write(base + "hidden", "new"); }, 0},
           {"write another's", [&] { write("/etc/passwd", ""); }, 5},
           {"create", [&] { OsFile(closed + "new").create(permissions, false); }, 5},
           {"replace", [&] { replace(closed + "file", "new"); }, 5},
           {"remove", [&] { OsFile(closed + "file").remove(); }, 5},
           {"move away", [&] { OsFile(closed + "file").renameTo(base + "file"); }, 5},
           {"copy into", [&] { OsFile(base + "free").copyTo(closed); }, 5},
           {"make a directory", [&] { OsDir(closed + "sub").create(); }, 5}});
    for (const char* path : {"C:\\etc\\passwd", "C:\\dev\\null"}) // another's, a device
        SCENARIO_CHECK_THROWS(replace(path, ""), OsFileEx::ExPathNotWritable,
                              ("Invalid path: '" + std::string(path) + "'.").c_str());
    ::chmod((folder / "closed").c_str(), 0);
    check({{"read", [&] { OsFileReader reader(closed + "file"); }, 5},
           {"list", [&] { OsDir(closed).list(); }, 5}});
    ::chmod((folder / "closed").c_str(), 0755);
    SCENARIO_CHECK(FileFolder::read(folder / "closed/file") == "old");
    if (isRoot) // who may remove the folder
        SCENARIO_CHECK(::seteuid(0) == 0);
}

// Signals

/// Interrupts the calls in which the main thread waits for this one.
void interrupt()
{
    for (int i = 0; i < 5; ++i)
    {
        for (char state = '\0'; state != 'S';) // asleep, also again after the signal before
        {
            std::string text;
            std::getline(std::ifstream("/proc/self/stat"), text);
            state = text.at(text.rfind(')') + 2);
        }
        ::kill(::getpid(), SIGALRM);
    }
}

/// Lets another thread do something while this one does, which gets all signals.
void meanwhile(const std::function<void()>& other, const std::function<void()>& action)
{
    const unsigned handles = HandleCount::get();
    sigset_t mask;
    sigemptyset(&mask);
    sigaddset(&mask, SIGALRM);
    ::pthread_sigmask(SIG_BLOCK, &mask, nullptr);
    std::thread thread(
        [&]
        {
            interrupt();
            other();
        });
    ::pthread_sigmask(SIG_UNBLOCK, &mask, nullptr);
    SCENARIO_CHECK(codeOf(action) == 0);
    thread.join();
    SCENARIO_CHECK(HandleCount::get() == handles);
}

void interrupted()
{
    const FileFolder folder;
    const OsFilePath base(folder.getPath());
    const std::string pipe = folder / "pipe";
    write(base + "large", mebibyte);
    SCENARIO_CHECK(::mkfifo(pipe.c_str(), 0600) == 0);
    struct sigaction action = {};
    action.sa_handler = [](int) {}; // without SA_RESTART
    ::sigaction(SIGALRM, &action, nullptr);

    std::string got(mebibyte.size(), '\0');
    for (const bool isRead : {true, false})
        meanwhile(
            [&]
            {
                const int file = ::open(pipe.c_str(), (isRead ? O_WRONLY : O_RDWR) | O_CLOEXEC);
                for (std::size_t at = 0; at < got.size();)
                {
                    interrupt();
                    at += static_cast<std::size_t>(isRead ? ::write(file, &mebibyte[at], 65536)
                                                          : ::read(file, &got[at], 65536));
                }
                ::close(file);
            },
            [&] {
                OsFile(base + (isRead ? "pipe" : "large"))
                    .copyTo(base + (isRead ? "copy" : "pipe"));
            });
    SCENARIO_CHECK(FileFolder::read(folder / "copy") == mebibyte && got == mebibyte);
    const int gate = ::open((folder / "large").c_str(), O_RDONLY | O_CLOEXEC);
    ::flock(gate, LOCK_EX);
    meanwhile([&] { ::flock(gate, LOCK_UN); }, [&] { OsFileReader reader(base + "large"); });
    ::close(gate);
    HANDLE files[2];
    const auto locks = [&](HANDLE file, bool isOwned)
    {
        OVERLAPPED range = {};
        return (isOwned ? LockFileEx(file, LOCKFILE_EXCLUSIVE_LOCK, 0, 1, 0, &range)
                        : UnlockFileEx(file, 0, 1, 0, &range)) != 0;
    };
    for (HANDLE& file : files)
        file = CreateFileA((folder / "large").c_str(), GENERIC_READ | GENERIC_WRITE,
                           FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
    SCENARIO_CHECK(locks(files[0], true));
    meanwhile([&] { locks(files[0], false); }, [&] { SCENARIO_CHECK(locks(files[1], true)); });
    for (const HANDLE file : files)
        CloseHandle(file);
}

void vanishing()
{
    const FileFolder folder;
    const OsFilePath base(folder.getPath());
    write(base + "large", mebibyte);
    {
        OsFileReader reader(base + "large");
        fs::remove(folder / "large");
        std::string got(mebibyte.size(), '\0');
        SCENARIO_CHECK(reader.read(got.data(), got.size()) == got.size() && got == mebibyte);
        SCENARIO_CHECK_THROWS(static_cast<void>(OsFile(base + "large").getSize()),
                              OsFileEx::ExInvalidPath,
                              ("Invalid path: '" + (base + "large").getString() + "'.").c_str());
    }
    write(base + "large", mebibyte);
    std::atomic<bool> isDone{false};
    std::thread other(
        [&]
        {
            for (unsigned size = 0; !isDone; size = (size + 333333) % (1 << 20))
                fs::resize_file(folder / "large", size);
        });
    for (int i = 0; i < 50; ++i)
    {
        check({{"copy", [&] { OsFile(base + "large").copyTo(base + "copy"); }, 0}});
        SCENARIO_CHECK(OsFile(base + "copy").getFullSize() <= mebibyte.size());
    }
    isDone = true;
    other.join();
}

} // namespace

int main(int argc, char** argv)
{
    const Scenario::Case cases[] = {{"fullDisk", fullDisk},
                                    {"tooManyFiles", tooManyFiles},
                                    {"otherUsers", otherUsers},
                                    {"interrupted", interrupted},
                                    {"vanishing", vanishing}};
    return Scenario::run(cases, argc, argv);
}

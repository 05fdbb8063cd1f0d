#include <platform/anyPath.h>
#include <platform/anyProcess.h>
#include <platform/commandLine.h>
#include <platform/posix/childProcess.h>
#include <platform/posix/path.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <new>
#include <sstream>

#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

/// What becomes of the descriptors of the child, and where it works.
class FileActions
{
public:
    FileActions() { check(::posix_spawn_file_actions_init(&_actions)); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;
    ~FileActions()
    {
        ::posix_spawn_file_actions_destroy(&_actions);
        for (const int descriptor : _copies)
            ::close(descriptor);
    }

    bool setStream(int number, const KrStream& stream);
    void setFolder(const char* path)
    {
        check(::posix_spawn_file_actions_addchdir_np(&_actions, path));
    }
    void closeOthers()
    {
        check(::posix_spawn_file_actions_addclosefrom_np(&_actions, krFirstPrivate));
    }
    const posix_spawn_file_actions_t* get() const { return &_actions; }

private:
    bool setFile(int number, HANDLE file);
    static void check(int error)
    {
        if (error != 0)
            throw std::bad_alloc();
    }

    posix_spawn_file_actions_t _actions;
    std::vector<int> _copies;
};

/// Whether the process has the standard stream. A descriptor that is closed on execution is a file
/// of the process's own, which has got the number of a stream that was closed.
bool hasStream(int number)
{
    const int flags = ::fcntl(number, F_GETFD);
    return flags >= 0 && (flags & FD_CLOEXEC) == 0;
}

bool FileActions::setStream(int number, const KrStream& stream)
{
    if (stream.kind == KrStream::handle)
        return setFile(number, stream.file);
    if (stream.kind == KrStream::output)
        check(::posix_spawn_file_actions_adddup2(&_actions, STDOUT_FILENO, number));
    else if (stream.kind == KrStream::null || !hasStream(number))
        check(::posix_spawn_file_actions_addopen(&_actions, number, "/dev/null",
                                                 number == STDIN_FILENO ? O_RDONLY : O_WRONLY, 0));
    return true;
}

bool FileActions::setFile(int number, HANDLE file)
{
    const auto* const object = krObject<KrHandleObject>(file);
    int descriptor = object != nullptr ? object->getDescriptor() : -1;
    if (descriptor >= 0 && descriptor < krFirstPrivate) // another stream would take its place
    {
        descriptor = ::fcntl(descriptor, F_DUPFD_CLOEXEC, krFirstPrivate);
        _copies.push_back(descriptor);
    }
    if (descriptor < 0)
        SetLastError(object != nullptr ? krErrorFromErrno(errno) : ERROR_INVALID_HANDLE);
    else
        check(::posix_spawn_file_actions_adddup2(&_actions, descriptor, number));
    return descriptor >= 0;
}

/// Signals as a program expects them: none blocked, none ignored. Those by which a terminal ends
/// programs stay ignored if they are, which is how a user keeps one in the background.
class Attributes
{
public:
    explicit Attributes(bool leadsGroup)
    {
        sigset_t none;
        sigset_t reset;
        ::sigemptyset(&none);
        ::sigfillset(&reset);
        for (const int signal : {SIGHUP, SIGINT, SIGQUIT})
            ::sigdelset(&reset, signal);
        int flags = POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF;
        if (leadsGroup)
            flags |= POSIX_SPAWN_SETPGROUP;
        ::posix_spawnattr_init(&_attributes); // cannot fail here, nor can the rest
        ::posix_spawnattr_setsigmask(&_attributes, &none);
        ::posix_spawnattr_setsigdefault(&_attributes, &reset);
        ::posix_spawnattr_setpgroup(&_attributes, 0);
        ::posix_spawnattr_setflags(&_attributes, static_cast<short>(flags));
    }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;
    ~Attributes() { ::posix_spawnattr_destroy(&_attributes); }

    const posix_spawnattr_t* get() const { return &_attributes; }

private:
    posix_spawnattr_t _attributes;
};

/// The child's environment; the texts that are made for it are kept in `storage`.
std::vector<char*> makeEnvironment(const KrStart& start, std::vector<std::string>& storage)
{
    std::vector<const KrVariableChange*> changes;
    for (const KrVariableChange& change : *start.changes)
        changes.push_back(&change);
    const auto byName = [](const KrVariableChange* lhs, const KrVariableChange* rhs)
    { return lhs->name < rhs->name; };
    std::sort(changes.begin(), changes.end(), byName);

    std::vector<char*> environment;
    char** const inherited = krEnvironment();
    for (char** entry = inherited; start.isEnvironmentKept && entry != nullptr && *entry != nullptr;
         ++entry)
    {
        const KrVariableChange key{std::string(*entry, std::strcspn(*entry, "=")), "", false};
        if (!std::binary_search(changes.begin(), changes.end(), &key, byName))
            environment.push_back(*entry);
    }
    storage.reserve(changes.size());
    for (const KrVariableChange* change : changes)
    {
        if (change->isRemoved)
            continue;
        storage.push_back(change->name + '=' + change->value);
        environment.push_back(storage.back().data());
    }
    environment.push_back(nullptr);
    return environment;
}

/// The last error for a program that could not be started: what is missing may also be the folder
/// that it is to work in, or the interpreter that its first line names.
void setStartError(int error, const char* program, const char* folder)
{
    struct stat status = {};
    const bool isMissing = error == ENOENT || error == ENOTDIR || error == EACCES;
    if (isMissing && folder != nullptr &&
        (::stat(folder, &status) != 0 || !S_ISDIR(status.st_mode)))
        return SetLastError(ERROR_DIRECTORY);
    if (error == ENOENT && ::stat(program, &status) == 0)
        return SetLastError(ERROR_BAD_EXE_FORMAT);
    errno = error;
    krSetPathError(program);
}

bool isProgram(const std::string& path)
{
    struct stat status = {};
    return ::stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
           ::access(path.c_str(), X_OK) == 0;
}

/// Beside this program, then in the folders of PATH; an empty one would be the current folder.
bool findInFolders(const std::string& name, std::string& found)
{
    const std::string own = krToStdPath(krGetProgramPath().c_str()).parent_path().native();
    const char* const path = std::getenv("PATH");
    std::istringstream folders(own + ':' +
                               (path != nullptr ? path : "/usr/local/bin:/usr/bin:/bin"));
    for (std::string folder; std::getline(folders, folder, ':');)
    {
        found = folder + '/' + name;
        if (!folder.empty() && isProgram(found))
            return true;
    }
    return false;
}

/// Takes hold of a process that has just been started; without a hold on it, it must not stay.
HANDLE hold(pid_t number, bool leadsGroup)
{
    const int descriptor = krKeepPrivate(static_cast<int>(::syscall(SYS_pidfd_open, number, 0)));
    const int error = errno;
    // There is none of a process that the system has removed already, as it may when the program
    // ignores the ends of its children. Its status is lost then.
    KrChildProcess* process = nullptr;
    if (descriptor >= 0 || error == ESRCH)
        process = new (std::nothrow) KrChildProcess(descriptor, number, leadsGroup);
    if (process != nullptr)
    {
        const HANDLE handle = KrHandleObject::open(process);
        if (handle != INVALID_HANDLE_VALUE)
            return handle;
        ::kill(number, SIGKILL); // its object, which is gone by now, sees to its end
        return nullptr;
    }
    SetLastError(descriptor >= 0 ? ERROR_NOT_ENOUGH_MEMORY : krErrorFromErrno(error));
    ::kill(number, SIGKILL);
    while (::waitpid(number, nullptr, 0) < 0 && errno == EINTR)
        continue;
    if (descriptor >= 0)
        ::close(descriptor);
    return nullptr;
}

} // namespace

bool krFindProgram(const char* name, std::string& path)
{
    std::string found;
    if (krHostPath(name, found) == nullptr)
        return false;
    if (found.find('/') == std::string::npos && !findInFolders(std::string(found), found))
    {
        SetLastError(ERROR_FILE_NOT_FOUND);
        return false;
    }
    std::size_t lastElement = 0;
    return krGetFullPath(found.c_str(), path, lastElement);
}

bool krStartProcess(const KrStart& start, KrProcess& process)
{
    std::string programStorage;
    std::string folderStorage;
    const char* const program = krHostPath(start.program, programStorage);
    const char* const folder =
        start.folder != nullptr ? krHostPath(start.folder, folderStorage) : nullptr;
    if (program == nullptr || (start.folder != nullptr && folder == nullptr))
        return false;

    FileActions actions;
    for (int stream = 0; stream < krFirstPrivate; ++stream)
        if (!actions.setStream(stream, start.streams[stream]))
            return false;
    if (folder != nullptr)
        actions.setFolder(folder);
    actions.closeOthers();

    std::vector<std::string> texts = krSplitCommandLine(start.commandLine);
    krHostPath(texts.front().c_str(), texts.front());
    std::vector<char*> arguments;
    for (std::string& text : texts)
        arguments.push_back(text.data());
    arguments.push_back(nullptr);

    std::vector<std::string> storage;
    std::vector<char*> environment;
    const bool isChanged = !start.isEnvironmentKept || !start.changes->empty();
    if (isChanged)
        environment = makeEnvironment(start, storage);

    const Attributes attributes(start.leadsGroup);
    pid_t number = 0;
    const int error =
        ::posix_spawn(&number, program, actions.get(), attributes.get(), arguments.data(),
                      isChanged ? environment.data() : krEnvironment());
    if (error != 0)
    {
        setStartError(error, program, folder);
        return false;
    }
    process.process = hold(number, start.leadsGroup);
    process.id = static_cast<DWORD>(number);
    process.leadsGroup = start.leadsGroup;
    return process.process != nullptr;
}

bool krAskToEnd(const KrProcess& process) noexcept
{
    auto* const object = krObject<KrChildProcess>(process.process);
    return object != nullptr && object->signal(SIGTERM);
}

bool krEndProcess(const KrProcess& process, DWORD code) noexcept
{
    return TerminateProcess(process.process, code) != 0;
}

double krGetProcessorTime(const KrProcess& process) noexcept
{
    auto* const object = krObject<KrChildProcess>(process.process);
    return object != nullptr ? object->getProcessorTime() : 0.;
}

void krReleaseProcess(KrProcess& process) noexcept
{
    if (process.process != nullptr)
        CloseHandle(process.process);
    process = {};
}

std::string krGetProgramPath()
{
    char path[krModulePathSize];
    const ssize_t length = ::readlink("/proc/self/exe", path, sizeof path);
    std::string text("C:");
    text.append(path, length > 0 ? static_cast<std::size_t>(length) : 0);
    std::replace(text.begin(), text.end(), '/', '\\');
    return text;
}

/// Kept for as long as the program runs: the calls hand out a pointer into it.
const char* GetCommandLineA() noexcept
{
    static const std::string line = []
    {
        std::string text;
        std::string storage;
        const int file = ::open("/proc/self/cmdline", O_RDONLY | O_CLOEXEC);
        char buffer[4096];
        for (ssize_t count = 0; (count = ::read(file, buffer, sizeof buffer)) > 0;)
            storage.append(buffer, static_cast<std::size_t>(count));
        ::close(file);
        for (std::size_t at = 0; at < storage.size(); at += std::strlen(storage.c_str() + at) + 1)
            at == 0 ? krAppendProgram(text, storage.c_str())
                    : krAppendArgument(text, storage.c_str() + at);
        return text;
    }();
    return line.c_str();
}

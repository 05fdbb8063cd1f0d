#include <platform/anyProcess.h>
#include <platform/windows/wideText.h>

#include <algorithm>
#include <mutex>
#include <utility>

namespace
{

using Environment = std::vector<std::wstring>;

/// A handle that is closed at the end.
class Handle
{
public:
    explicit Handle(HANDLE handle = nullptr)
        : _handle(handle != INVALID_HANDLE_VALUE ? handle : nullptr)
    {
    }
    Handle(Handle&& other) noexcept
        : _handle(std::exchange(other._handle, nullptr))
    {
    }
    Handle& operator=(Handle&& other) noexcept
    {
        std::swap(_handle, other._handle);
        return *this;
    }
    ~Handle()
    {
        if (_handle != nullptr)
            CloseHandle(_handle);
    }

    HANDLE get() const { return _handle; }
    HANDLE release() { return std::exchange(_handle, nullptr); }

private:
    HANDLE _handle;
};

Handle openNull(bool isInput)
{
    SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, 1};
    return Handle(CreateFileA("NUL", isInput ? GENERIC_READ : GENERIC_WRITE,
                              FILE_SHARE_READ | FILE_SHARE_WRITE, &inheritable, OPEN_EXISTING, 0,
                              nullptr));
}

/// Where a stream is to lead; null to the null device.
HANDLE findStream(std::size_t number, const KrStream& stream, HANDLE output)
{
    constexpr DWORD numbers[] = {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE};
    if (stream.kind == KrStream::handle)
        return stream.file;
    if (stream.kind == KrStream::output)
        return output;
    const HANDLE own = stream.kind == KrStream::inherited ? GetStdHandle(numbers[number]) : nullptr;
    return own != INVALID_HANDLE_VALUE ? own : nullptr;
}

/// What the child inherits as a stream: a copy, since only the copies are inheritable.
Handle makeStream(std::size_t number, const KrStream& stream, HANDLE output)
{
    HANDLE copy = nullptr;
    const HANDLE original = findStream(number, stream, output);
    if (original != nullptr && DuplicateHandle(GetCurrentProcess(), original, GetCurrentProcess(),
                                               &copy, 0, 1, DUPLICATE_SAME_ACCESS) != 0)
        return Handle(copy);
    return openNull(number == 0);
}

/// The list that keeps a child from inheriting more than its streams.
class HandleList
{
public:
    explicit HandleList(HANDLE* handles, std::size_t count)
    {
        SIZE_T size = 0;
        InitializeProcThreadAttributeList(nullptr, 1, 0, &size);
        _storage.resize(size);
        _isGood = InitializeProcThreadAttributeList(get(), 1, 0, &size) != 0 &&
                  UpdateProcThreadAttribute(get(), 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, handles,
                                            count * sizeof(HANDLE), nullptr, nullptr) != 0;
    }
    HandleList(const HandleList&) = delete;
    HandleList& operator=(const HandleList&) = delete;
    ~HandleList()
    {
        if (_isGood)
            DeleteProcThreadAttributeList(get());
    }

    LPPROC_THREAD_ATTRIBUTE_LIST get()
    {
        return reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(_storage.data());
    }
    bool isGood() const { return _isGood; }

private:
    std::vector<char> _storage;
    bool _isGood = false;
};

// The environment

/// An entry's name ends at the first equals sign but one at its start, as that of "=C:=C:\x".
std::size_t nameLength(const std::wstring& entry)
{
    return std::min(entry.find(L'=', 1), entry.size());
}

/// The system's order, which disregards case.
int compareNames(const std::wstring& lhs, const std::wstring& rhs)
{
    return CompareStringOrdinal(lhs.c_str(), static_cast<int>(nameLength(lhs)), rhs.c_str(),
                                static_cast<int>(nameLength(rhs)), 1) -
           CSTR_EQUAL;
}

bool isBefore(const std::wstring& lhs, const std::wstring& rhs)
{
    return compareNames(lhs, rhs) < 0;
}

Environment readEnvironment()
{
    Environment environment;
    wchar_t* const block = GetEnvironmentStringsW();
    for (const wchar_t* entry = block; entry != nullptr && *entry != L'\0';
         entry += environment.back().size() + 1)
        environment.emplace_back(entry);
    FreeEnvironmentStringsW(block);
    return environment;
}

/// Programs do not start without this one.
bool isIndispensable(const std::wstring& entry)
{
    return compareNames(entry, L"SystemRoot=") == 0;
}

std::wstring makeEnvironment(const KrStart& start)
{
    Environment environment = readEnvironment();
    if (!start.isEnvironmentKept)
        environment.erase(std::remove_if(environment.begin(), environment.end(),
                                         [](const auto& entry) { return !isIndispensable(entry); }),
                          environment.end());
    std::stable_sort(environment.begin(), environment.end(), isBefore);
    for (const KrVariableChange& change : *start.changes)
    {
        std::wstring entry = krWiden((change.name + '=' + change.value).c_str());
        const auto range =
            std::equal_range(environment.begin(), environment.end(), entry, isBefore);
        const auto place = environment.erase(range.first, range.second);
        if (!change.isRemoved)
            environment.insert(place, std::move(entry));
    }
    std::wstring block;
    for (const std::wstring& entry : environment)
        block.append(entry).push_back(L'\0');
    block.append(environment.empty() ? 2 : 1, L'\0');
    return block;
}

// Starting

/// The folder of this program, then those of PATH, as the system's search takes them.
std::wstring listFolders()
{
    std::wstring folders = krWiden(krGetProgramPath().c_str());
    folders.erase(std::min(folders.rfind(L'\\'), folders.size()));
    std::wstring path(GetEnvironmentVariableW(L"PATH", nullptr, 0), L'\0');
    path.resize(GetEnvironmentVariableW(L"PATH", path.data(), static_cast<DWORD>(path.size())));
    return folders + L';' + path;
}

DWORD creationFlags(const KrStart& start)
{
    DWORD flags = EXTENDED_STARTUPINFO_PRESENT | CREATE_UNICODE_ENVIRONMENT;
    if (start.leadsGroup)
        flags |= CREATE_NEW_PROCESS_GROUP | CREATE_SUSPENDED;
    if (GetConsoleCP() == 0) // a program with windows shows no console because of its children
        flags |= CREATE_NO_WINDOW;
    return flags;
}

/// Its descendants are born into the job too, because the process is put there before it runs. In a
/// job that allows no other one it stays alone.
void enterJob(const PROCESS_INFORMATION& information, KrProcess& process)
{
    Handle job(CreateJobObjectW(nullptr, nullptr));
    if (job.get() != nullptr && AssignProcessToJobObject(job.get(), information.hProcess) != 0)
        process.group = job.release();
    ResumeThread(information.hThread);
}

struct WindowSearch
{
    DWORD process;
    bool isFound;
};

/// Asks a window as its close button does, if it is the process's and stands by itself.
BOOL CALLBACK closeWindow(HWND window, LPARAM argument)
{
    auto& search = *reinterpret_cast<WindowSearch*>(argument); // NOLINT: the system's type
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    if (process == search.process && IsWindowVisible(window) != 0 &&
        GetWindow(window, GW_OWNER) == nullptr && PostMessageW(window, WM_CLOSE, 0, 0) != 0)
        search.isFound = true;
    return 1;
}

/// The console of a child that was started without a window, for as long as the object lives; this
/// program, which has none, is not seen to have one. Its streams stay what they are.
class BorrowedConsole
{
public:
    explicit BorrowedConsole(DWORD process) noexcept
    {
        for (std::size_t i = 0; i < std::size(numbers); ++i)
            _streams[i] = GetStdHandle(numbers[i]);
        _isAttached = AttachConsole(process) != 0;
    }
    BorrowedConsole(const BorrowedConsole&) = delete;
    BorrowedConsole& operator=(const BorrowedConsole&) = delete;
    ~BorrowedConsole()
    {
        if (!_isAttached)
            return;
        FreeConsole();
        for (std::size_t i = 0; i < std::size(numbers); ++i)
            SetStdHandle(numbers[i], _streams[i]);
    }

private:
    static constexpr DWORD numbers[] = {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE};

    HANDLE _streams[3] = {};
    bool _isAttached = false;
};

/// Sends a break to the group that the process leads, through the console that it is attached to.
bool breakGroup(DWORD process) noexcept
{
    static std::mutex mutex; // a process has one console
    const std::lock_guard<std::mutex> lock(mutex);
    if (GetConsoleCP() != 0)
        return GenerateConsoleCtrlEvent(CTRL_BREAK_EVENT, process) != 0;
    const BorrowedConsole console(process);
    return GenerateConsoleCtrlEvent(CTRL_BREAK_EVENT, process) != 0;
}

double toSeconds(const FILETIME& time)
{
    constexpr double unit = 1e-7;
    return (static_cast<double>(time.dwHighDateTime) * 4294967296. +
            static_cast<double>(time.dwLowDateTime)) *
           unit;
}

} // namespace

bool krFindProgram(const char* name, std::string& path)
{
    const std::wstring wide = krWiden(name);
    // A name with a folder is found without a list.
    const std::wstring folders =
        wide.find_first_of(L"\\/:") == std::wstring::npos ? listFolders() : L".";
    std::wstring found(MAX_PATH, L'\0');
    DWORD length = 0;
    while ((length = SearchPathW(folders.c_str(), wide.c_str(), L".exe",
                                 static_cast<DWORD>(found.size()), found.data(), nullptr)) >=
           found.size())
        found.resize(length + 1);
    found.resize(length);
    std::wstring full(GetFullPathNameW(found.c_str(), 0, nullptr, nullptr), L'\0');
    full.resize(
        GetFullPathNameW(found.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
    path = krNarrow(full.c_str());
    return length != 0;
}

bool krStartProcess(const KrStart& start, KrProcess& process)
{
    constexpr std::size_t longestLine = 32766;
    std::wstring commandLine = krWiden(start.commandLine);
    if (commandLine.size() > longestLine) // not every system looks
    {
        SetLastError(ERROR_FILENAME_EXCED_RANGE);
        return false;
    }
    Handle streams[3];
    HANDLE handles[3] = {};
    for (std::size_t i = 0; i < std::size(streams); ++i)
    {
        streams[i] = makeStream(i, start.streams[i], handles[1]);
        handles[i] = streams[i].get();
        if (handles[i] == nullptr)
            return false;
    }
    HandleList list(handles, std::size(handles));
    if (!list.isGood())
        return false;

    STARTUPINFOEXW startup{};
    startup.StartupInfo.cb = sizeof startup;
    startup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
    startup.StartupInfo.hStdInput = handles[0];
    startup.StartupInfo.hStdOutput = handles[1];
    startup.StartupInfo.hStdError = handles[2];
    startup.lpAttributeList = list.get();

    const bool isChanged = !start.isEnvironmentKept || !start.changes->empty();
    std::wstring environment = isChanged ? makeEnvironment(start) : std::wstring();
    const std::wstring folder = start.folder != nullptr ? krWiden(start.folder) : std::wstring();
    PROCESS_INFORMATION information{};
    if (CreateProcessW(krWiden(start.program).c_str(), commandLine.data(), nullptr, nullptr, 1,
                       creationFlags(start), isChanged ? environment.data() : nullptr,
                       folder.empty() ? nullptr : folder.c_str(), &startup.StartupInfo,
                       &information) == 0)
        return false;
    process.process = information.hProcess;
    process.id = information.dwProcessId;
    process.leadsGroup = start.leadsGroup;
    if (start.leadsGroup)
        enterJob(information, process);
    CloseHandle(information.hThread);
    return true;
}

bool krAskToEnd(const KrProcess& process) noexcept
{
    WindowSearch search{process.id, false};
    EnumWindows(closeWindow, reinterpret_cast<LPARAM>(&search));
    const bool isBroken = process.leadsGroup && breakGroup(process.id);
    return search.isFound || isBroken;
}

bool krEndProcess(const KrProcess& process, DWORD code) noexcept
{
    return (process.group != nullptr ? TerminateJobObject(process.group, code)
                                     : TerminateProcess(process.process, code)) != 0;
}

double krGetProcessorTime(const KrProcess& process) noexcept
{
    FILETIME creation{};
    FILETIME exit{};
    FILETIME kernel{};
    FILETIME user{};
    if (GetProcessTimes(process.process, &creation, &exit, &kernel, &user) == 0)
        return 0.;
    return toSeconds(kernel) + toSeconds(user);
}

void krReleaseProcess(KrProcess& process) noexcept
{
    for (const HANDLE handle : {process.process, process.group})
        if (handle != nullptr)
            CloseHandle(handle);
    process = {};
}

std::string krGetProgramPath()
{
    std::wstring path(MAX_PATH, L'\0');
    for (;;)
    {
        const DWORD length =
            GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size())
            return krNarrow(path.c_str());
        path.resize(path.size() * 2);
    }
}

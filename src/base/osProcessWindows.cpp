#include <base/assert.h>
#include <base/exSysError.h>
#include <base/internal/processes/osProcessWindows.h>
#include <base/osDir.h>
#include <base/raise.h>
#include <platform/anyPath.h>
#include <platform/commandLine.h>
#include <platform/exitCodes.h>

#include <algorithm>

namespace Kr
{

namespace
{

[[noreturn]] void raiseNotStarted(const OsFilePath& program, const char* folder, const char* detail)
{
    const ExSysErrorWindows system(KR_HERE);
    const std::string reason = std::string(system.getReason()) + detail;
    raise<OsProcessEx::ExNotStarted>(KR_HERE, program.getChars(), folder, reason.c_str(),
                                     system.getErrorCode());
}

bool hasFolder(const OsFilePath& program)
{
    return program.getView().find_first_of("\\/:") != std::string_view::npos;
}

HANDLE openFile(OsCommand::Stream stream, const OsFilePath& path, bool isAppended)
{
    constexpr DWORD share = FILE_SHARE_READ | FILE_SHARE_WRITE;
    const bool isInput = stream == OsCommand::Input;
    const DWORD outputAccess = isAppended ? FILE_APPEND_DATA : GENERIC_WRITE;
    const DWORD outputDisposition = isAppended ? OPEN_ALWAYS : CREATE_ALWAYS;
    const HANDLE file = krCreateFile(path.getChars(), isInput ? GENERIC_READ : outputAccess, share,
                                     isInput ? OPEN_EXISTING : outputDisposition);
    return file != INVALID_HANDLE_VALUE ? file : nullptr;
}

/// A failed start for which nothing but the folder or the length of the arguments is to blame.
[[noreturn]] void explainFailure(const OsCommand& command)
{
    constexpr std::size_t longestPath = 32000;
    const DWORD error = GetLastError();
    const OsFilePath& program = command.getProgram();
    const std::size_t size = command.getCommandLine().size();
    if (error == ERROR_FILENAME_EXCED_RANGE && size > longestPath)
    {
        std::size_t longest = 0;
        for (const std::string& argument : command.getArguments())
            longest = std::max(longest, argument.size());
        raise<OsProcessEx::ExArgumentsTooLong>(KR_HERE, program.getChars(), size, longest);
    }
    const OsFilePath& folder = command.getFolder();
    const bool isFolderMissing = !folder.isEmpty() && !OsDir(folder).exists();
    SetLastError(isFolderMissing ? ERROR_DIRECTORY : error);
    raiseNotStarted(program, isFolderMissing ? folder.getChars() : nullptr, "");
}

} // namespace

void OsProcess::Release::operator()(State* state) const noexcept
{
    delete state;
}

void OsProcess::performFind(const OsFilePath& program)
{
    std::string path;
    if (!krFindProgram(program.getChars(), path))
        raiseNotStarted(program, nullptr,
                        hasFolder(program)
                            ? ""
                            : " (It is neither beside this program nor in a folder of PATH.)");
    _program = OsFilePath(path);
}

KrStream OsProcess::State::connect(const OsCommand& command, Stream stream,
                                   OsCommand::Connection standard)
{
    const OsCommand::Target& target = command._targets[stream];
    HANDLE& end = childEnds[stream];
    switch (target.connection != OsCommand::Standard ? target.connection : standard)
    {
    case OsCommand::Piped:
        if (!krCreatePipe(pipes[stream], end, stream == OsCommand::Input))
            raise<ExSysErrorWindows>(KR_HERE);
        return {KrStream::handle, end};
    case OsCommand::File:
        end = openFile(stream, target.path, target.isAppended);
        if (end == nullptr)
            raise<OsProcessEx::ExNoStreamFile>(KR_HERE, target.path.getChars(), nameOf(stream),
                                               command.getProgram().getChars(),
                                               ExSysErrorWindows(KR_HERE).getReason());
        return {KrStream::handle, end};
    case OsCommand::Nowhere:
        return {KrStream::null, nullptr};
    case OsCommand::Merged:
        return {KrStream::output, nullptr};
    default:
        return {KrStream::inherited, nullptr};
    }
}

void OsProcess::performStart(const OsCommand& command, OsCommand::Connection standard)
{
    std::unique_ptr<State, Release> state(new State);
    KrStart start;
    for (const Stream stream : {OsCommand::Input, OsCommand::Output, OsCommand::Errors})
        start.streams[stream] = state->connect(command, stream, standard);
    std::vector<KrVariableChange> changes;
    for (const auto& [name, value] : command._variables)
        changes.push_back({name, value.value_or(""), !value.has_value()});
    start.program = _program.getChars();
    start.commandLine = _commandLine.c_str();
    start.folder = command.getFolder().isEmpty() ? nullptr : command.getFolder().getChars();
    start.isEnvironmentKept = command._isEnvironmentKept;
    start.changes = &changes;
    start.leadsGroup = command.leadsGroup();
    if (!krStartProcess(start, state->process))
        explainFailure(command);
    state->closeChildEnds();
    _state = std::move(state);
}

unsigned long OsProcess::getId() const
{
    return getState().process.id;
}

bool OsProcess::performWait(double seconds) const
{
    const HANDLE process = getState().process.process;
    if (seconds == 0.) // asked often, and without a look at the clock
        return WaitForSingleObject(process, 0) == WAIT_OBJECT_0;
    const OsDeadline deadline(seconds);
    do
        if (WaitForSingleObject(process, deadline.getMilliseconds()) == WAIT_OBJECT_0)
            return true;
    while (!deadline.isOver());
    return false;
}

std::uint32_t OsProcess::performGetExitCode() const
{
    DWORD code = 0;
    if (GetExitCodeProcess(getState().process.process, &code) == 0)
        raise<ExSysErrorWindows>(KR_HERE);
    return code;
}

double OsProcess::performGetProcessorTime() const
{
    return krGetProcessorTime(getState().process);
}

bool OsProcess::performRequestEnd() const
{
    return krAskToEnd(getState().process);
}

/// A process that has ended by itself just now is no failure; what is left of its group ends too.
void OsProcess::performTerminate() const
{
    const KrProcess& process = getState().process;
    if ((process.leadsGroup || isRunning()) && !krEndProcess(process, krKilled))
    {
        const ExSysErrorWindows error(KR_HERE);
        if (isRunning())
            raise(error);
    }
}

// This process

unsigned long OsProcess::getCurrentId()
{
    return GetCurrentProcessId();
}

OsFilePath OsProcess::getCurrentProgram()
{
    return OsFilePath(krGetProgramPath());
}

std::string OsProcess::getCurrentCommandLine()
{
    return GetCommandLineA();
}

std::vector<std::string> OsProcess::getCurrentArguments()
{
    return krSplitCommandLine(GetCommandLineA());
}

} // namespace Kr

#include <base/osProcess.h>

#include <base/assert.h>
#include <base/raise.h>
#include <platform/exitCodes.h>

#include <utility>

namespace Kr
{

namespace
{

const char* nameOf(OsCommand::Stream stream)
{
    constexpr const char* names[] = {"input", "output", "errors"};
    return names[stream];
}

char toLower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Whether the system has its command interpreter run the file. It disregards dots and blanks at
/// the end of a name.
bool isBatchFile(std::string_view path)
{
    const std::size_t last = path.find_last_not_of(". ");
    path = path.substr(0, last + 1);
    std::string extension(path.substr(path.size() < 4 ? 0 : path.size() - 4));
    for (char& c : extension)
        c = toLower(c);
    return extension == ".bat" || extension == ".cmd";
}

/// Whether the command interpreter could take the text for more, or for something else, than the
/// batch file's argument. It has no way to write these characters that holds in every place where
/// the file may use the argument; a backslash at the end would meet the quote that ends the text.
bool isMisread(std::string_view argument)
{
    if (!argument.empty() && argument.back() == '\\')
        return true;
    for (const char c : argument)
        if (static_cast<unsigned char>(c) < 0x20 ||
            std::string_view("\"%!^&|<>()").find(c) != std::string_view::npos)
            return true;
    return false;
}

} // namespace

// Starting

OsProcess::OsProcess(const OsCommand& command)
    : OsProcess(command, OsCommand::Inherited)
{
}

OsProcess::OsProcess(const OsCommand& command, OsCommand::Connection standard)
    : _commandLine(command.getCommandLine())
{
    performFind(command.getProgram());
    checkSafe(command);
    performStart(command, standard);
}

OsProcess::OsProcess(OsProcess&& other) noexcept = default;

OsProcess& OsProcess::operator=(OsProcess&& other) noexcept
{
    OsProcess taken(std::move(other));
    std::swap(_state, taken._state);
    std::swap(_program, taken._program);
    std::swap(_commandLine, taken._commandLine);
    std::swap(_linger, taken._linger);
    return *this;
}

OsProcess::~OsProcess()
{
    if (_state != nullptr)
        endForSure();
}

OsProcess::Result OsProcess::run(const OsCommand& command, std::string_view input, double seconds)
{
    OsProcess process(command, OsCommand::Piped);
    Result result;
    static_cast<Collected&>(result) = process.communicate(input, seconds);
    if (result.ending == TimeOver)
        process.terminate();
    result.status = process.wait();
    return result;
}

void OsProcess::checkSafe(const OsCommand& command) const
{
    if (!isBatchFile(_program.getView()))
        return;
    if (_program.getView().find_first_of("%!^&|") != std::string_view::npos)
        raise<OsProcessEx::ExUnsafeArgument>(KR_HERE, _program.getChars(), _program.getChars());
    for (const std::string& argument : command.getArguments())
        if (isMisread(argument))
            raise<OsProcessEx::ExUnsafeArgument>(KR_HERE, _program.getChars(), argument.c_str());
}

OsProcess::State& OsProcess::getState() const
{
    KR_ASSERT(_state != nullptr);
    return *_state;
}

const OsFilePath& OsProcess::getProgram() const
{
    return _program;
}

const std::string& OsProcess::getCommandLine() const
{
    return _commandLine;
}

// Its end

bool OsProcess::isRunning() const
{
    return !performWait(0.);
}

OsExitStatus OsProcess::wait()
{
    performWait(unlimited);
    return getExitStatus();
}

bool OsProcess::wait(double seconds)
{
    KR_ASSERT(seconds >= 0.);
    return performWait(seconds);
}

OsExitStatus OsProcess::getExitStatus() const
{
    if (isRunning())
        raise<OsProcessEx::ExRunning>(KR_HERE, getId());
    const std::uint32_t code = performGetExitCode();
    if (code == krStatusLost)
        raise<OsProcessEx::ExStatusLost>(KR_HERE, getId());
    return OsExitStatus(code);
}

double OsProcess::getProcessorTime() const
{
    return performGetProcessorTime();
}

bool OsProcess::requestEnd()
{
    return performRequestEnd();
}

void OsProcess::terminate()
{
    performTerminate();
}

OsExitStatus OsProcess::end(double patience)
{
    KR_ASSERT(patience >= 0.);
    if (isRunning() && !(requestEnd() && wait(patience)))
        terminate();
    return wait();
}

void OsProcess::endForSure() noexcept
{
    try
    {
        if (isRunning())
            terminate();
        performWait(unlimited);
    }
    catch (const ExBase&)
    {
        return; // it has been reported; the process is not ours to end
    }
}

void OsProcess::detach()
{
    getState();
    _state.reset();
}

// Its streams

bool OsProcess::takes(Stream stream) const
{
    return stream == OsCommand::Output || stream == OsCommand::Errors;
}

void OsProcess::checkConnected(Stream stream) const
{
    if (!isConnected(stream))
        raise<OsProcessEx::ExNotConnected>(KR_HERE, nameOf(stream), getId());
}

bool OsProcess::isConnected(Stream stream) const
{
    KR_ASSERT(stream == OsCommand::Input || takes(stream));
    return performIsConnected(stream);
}

void OsProcess::write(const void* data, std::size_t size)
{
    checkConnected(OsCommand::Input);
    KR_ASSERT(data != nullptr || size == 0);
    const std::size_t taken = performWrite(static_cast<const char*>(data), size);
    if (taken == size)
        return;
    close(OsCommand::Input);
    raise<OsProcessEx::ExInputClosed>(KR_HERE, getId(), taken, size);
}

void OsProcess::write(std::string_view text)
{
    write(text.data(), text.size());
}

std::size_t OsProcess::read(Stream stream, void* buffer, std::size_t size)
{
    KR_ASSERT(takes(stream));
    checkConnected(stream);
    KR_ASSERT(buffer != nullptr && size != 0);
    const std::size_t count = performRead(stream, buffer, size);
    if (count == 0)
        close(stream);
    return count;
}

void OsProcess::close(Stream stream)
{
    checkConnected(stream);
    performClose(stream);
}

OsProcess::Collected OsProcess::communicate(std::string_view input, double seconds)
{
    Collected collected;
    const Sink append = [&collected](Stream stream, std::string_view bytes)
    { (stream == OsCommand::Output ? collected.output : collected.errors).append(bytes); };
    static_cast<Served&>(collected) = communicate(input, append, seconds);
    return collected;
}

OsProcess::Served OsProcess::communicate(std::string_view input, const Sink& sink, double seconds)
{
    KR_ASSERT(seconds >= 0.);
    KR_ASSERT(sink != nullptr);
    if (!input.empty())
        checkConnected(OsCommand::Input);
    return performServe(input, sink, seconds);
}

double OsProcess::setLinger(double seconds)
{
    KR_ASSERT(seconds >= 0.);
    return std::exchange(_linger, seconds);
}

double OsProcess::getLinger() const
{
    return _linger;
}

} // namespace Kr

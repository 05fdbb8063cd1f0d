#include <base/osCommand.h>

#include <base/assert.h>
#include <base/osFileEx.h>
#include <base/osProcessEx.h>
#include <base/raise.h>
#include <platform/commandLine.h>

#include <utility>

namespace Kr
{

namespace
{

void checkNoNull(std::string_view text, const char* format)
{
    if (text.find('\0') != std::string_view::npos)
        raise<OsProcessEx::ExBadText>(KR_HERE, format, std::string(text).c_str());
}

} // namespace

OsCommand::OsCommand(const OsFilePath& program)
    : _program(program)
{
    if (_program.isEmpty())
        raise<OsFileEx::ExNullFilePath>(KR_HERE);
}

OsCommand::OsCommand(const OsFilePath& program, const std::vector<std::string>& arguments)
    : OsCommand(program)
{
    addArguments(arguments);
}

OsCommand::OsCommand(const OsCommand& other) = default;
OsCommand::OsCommand(OsCommand&& other) noexcept = default;
OsCommand& OsCommand::operator=(const OsCommand& other) = default;
OsCommand& OsCommand::operator=(OsCommand&& other) noexcept = default;
OsCommand::~OsCommand() = default;

// Arguments

OsCommand& OsCommand::addArgument(std::string_view argument)
{
    checkNoNull(argument, "An argument holds a null character behind '%.256s'.");
    _arguments.emplace_back(argument);
    return *this;
}

OsCommand& OsCommand::addArguments(const std::vector<std::string>& arguments)
{
    for (const std::string& argument : arguments)
        addArgument(argument);
    return *this;
}

OsCommand& OsCommand::addPath(const OsFilePath& path)
{
    return addArgument(path.getStdPath().string());
}

std::string OsCommand::getCommandLine() const
{
    std::string line;
    krAppendProgram(line, _program);
    for (const std::string& argument : _arguments)
        krAppendArgument(line, argument);
    return line;
}

OsCommand& OsCommand::changeFolder(const OsFilePath& folder)
{
    _folder = folder;
    return *this;
}

// Environment

OsCommand& OsCommand::setVariable(std::string_view name, std::optional<std::string> value)
{
    checkNoNull(name, "The name of a variable holds a null character behind '%.256s'.");
    if (name.empty() || name.find('=') != std::string_view::npos)
        raise<OsProcessEx::ExBadText>(KR_HERE, "'%.256s' is no name of a variable.",
                                      std::string(name).c_str());
    _variables[std::string(name)] = std::move(value);
    return *this;
}

OsCommand& OsCommand::changeVariable(std::string_view name, std::string_view value)
{
    checkNoNull(value, "The value of a variable holds a null character behind '%.256s'.");
    return setVariable(name, std::string(value));
}

OsCommand& OsCommand::removeVariable(std::string_view name)
{
    return setVariable(name, std::nullopt);
}

OsCommand& OsCommand::clearVariables()
{
    _variables.clear();
    _isEnvironmentKept = false;
    return *this;
}

// Streams

OsCommand& OsCommand::setTarget(Stream stream, const Target& target)
{
    KR_ASSERT(stream >= Input && stream <= Errors);
    _targets[stream] = target;
    return *this;
}

OsCommand& OsCommand::setFile(Stream stream, const OsFilePath& path, bool isAppended)
{
    if (path.isEmpty())
        raise<OsFileEx::ExNullFilePath>(KR_HERE);
    return setTarget(stream, {File, path, isAppended});
}

OsCommand& OsCommand::inheritStream(Stream stream)
{
    return setTarget(stream, {Inherited, {}, false});
}

OsCommand& OsCommand::pipeStream(Stream stream)
{
    return setTarget(stream, {Piped, {}, false});
}

OsCommand& OsCommand::discardStream(Stream stream)
{
    return setTarget(stream, {Nowhere, {}, false});
}

OsCommand& OsCommand::readFile(const OsFilePath& path)
{
    return setFile(Input, path, false);
}

OsCommand& OsCommand::writeFile(Stream stream, const OsFilePath& path)
{
    KR_ASSERT(stream == Output || stream == Errors);
    return setFile(stream, path, false);
}

OsCommand& OsCommand::appendFile(Stream stream, const OsFilePath& path)
{
    KR_ASSERT(stream == Output || stream == Errors);
    return setFile(stream, path, true);
}

OsCommand& OsCommand::mergeErrors()
{
    return setTarget(Errors, {Merged, {}, false});
}

OsCommand::Connection OsCommand::getConnection(Stream stream) const noexcept
{
    return _targets[stream].connection;
}

OsCommand& OsCommand::leadGroup()
{
    _leadsGroup = true;
    return *this;
}

} // namespace Kr

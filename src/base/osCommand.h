#pragma once

/// @file
/// A program with all that it is started with. `OsProcess` starts it, as often as one likes.
/// @code{.cpp}
/// #include <base/osProcess.h>
///
/// bool compile()
/// {
///     Kr::OsCommand compiler("c++");
///     compiler.addArguments({"-c", "-DNAME=\"a b\""}).addPath("scene.cpp");
///     compiler.changeFolder("build").changeVariable("LANG", "C");
///     compiler.writeFile(Kr::OsCommand::Output, "build/log.txt").mergeErrors();
///     return Kr::OsProcess(compiler).wait().isSuccess();
/// }
/// @endcode
/// Every argument reaches the program's `main` as it is: no shell reads it, and on Windows, where
/// the system knows only one text, it is quoted for the runtime that takes it apart again.
///
/// A program without a folder in its name is looked for beside this program, then along PATH, but
/// never in the current folder. A relative path is taken from this process's folder, also if the
/// program is to work in another.
///
/// Pitfalls: programs that take their command line apart by rules of their own (`cmd`, some of the
/// oldest) may see more than one argument in a text with blanks or quotes; a batch file is refused
/// with what its interpreter could misread. Texts are in the system's narrow code page.

#include <base/krBaseApi.h>
#include <base/osFilePath.h>

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Kr
{

class KR_BASE_API OsCommand
{
public:
    enum Stream
    {
        Input,
        Output,
        Errors
    };

    /// Where a stream of the program leads.
    enum Connection
    {
        Standard,  ///< as of `Inherited`, but for `OsProcess::run` as of `Piped`
        Inherited, ///< where this process's leads; nowhere if this process has none
        Piped,     ///< to this process, see `OsProcess`
        Nowhere,   ///< reads nothing, loses what is written
        File,
        Merged ///< the errors, where the output leads
    };

    /// Raises `OsFileEx::ExNullFilePath` for an empty path.
    explicit OsCommand(const OsFilePath& program);
    OsCommand(const OsFilePath& program, const std::vector<std::string>& arguments);
    OsCommand(const OsCommand& other);
    OsCommand(OsCommand&& other) noexcept;
    OsCommand& operator=(const OsCommand& other);
    OsCommand& operator=(OsCommand&& other) noexcept;
    ~OsCommand();

    const OsFilePath& getProgram() const noexcept { return _program; }

    // Arguments. A text with a null character raises `OsProcessEx::ExBadText`.

    OsCommand& addArgument(std::string_view argument);
    OsCommand& addArguments(const std::vector<std::string>& arguments);
    /// The path in the form of the host's own, as `OsFilePath::getStdPath` gives it.
    OsCommand& addPath(const OsFilePath& path);
    const std::vector<std::string>& getArguments() const noexcept { return _arguments; }

    /// The program's and the arguments, as the system is given them.
    std::string getCommandLine() const;

    /// The program's current folder: this process's unless changed.
    OsCommand& changeFolder(const OsFilePath& folder);
    const OsFilePath& getFolder() const noexcept { return _folder; }

    // The environment is this process's at the time of the start, with the changes made here. A
    // name that is empty or holds "=", and a null character, raise `OsProcessEx::ExBadText`.
    // Whether the case of a name matters is the system's choice.

    OsCommand& changeVariable(std::string_view name, std::string_view value);
    OsCommand& removeVariable(std::string_view name);
    /// Begins with an empty environment, and forgets the changes made so far. (On Windows
    /// SystemRoot stays, without which no program starts.)
    OsCommand& clearVariables();

    // Streams, which are `Standard` unless set.

    OsCommand& inheritStream(Stream stream);
    OsCommand& pipeStream(Stream stream);
    OsCommand& discardStream(Stream stream);
    OsCommand& readFile(const OsFilePath& path); ///< as the input
    /// Writes a stream, not the input, into a file, which is emptied before.
    OsCommand& writeFile(Stream stream, const OsFilePath& path);
    OsCommand& appendFile(Stream stream, const OsFilePath& path); ///< the same behind what is there
    OsCommand& mergeErrors();                                     ///< into the output
    Connection getConnection(Stream stream) const noexcept;

    /// Has the process lead a group, to which its descendants belong too: what ends the process
    /// ends them all. An interrupt typed at the terminal does not reach a group. Without it an end
    /// by force leaves the descendants running, and on Windows only programs with windows can be
    /// asked to end.
    OsCommand& leadGroup();
    bool leadsGroup() const noexcept { return _leadsGroup; }

private:
    friend class OsProcess;

    using Variables = std::map<std::string, std::optional<std::string>>; ///< no value: removed

    struct Target
    {
        Connection connection = Standard;
        OsFilePath path;
        bool isAppended = false;
    };

    OsCommand& setTarget(Stream stream, const Target& target);
    OsCommand& setFile(Stream stream, const OsFilePath& path, bool isAppended);
    OsCommand& setVariable(std::string_view name, std::optional<std::string> value);

    OsFilePath _program;
    std::vector<std::string> _arguments;
    OsFilePath _folder;
    Variables _variables;
    bool _isEnvironmentKept = true;
    Target _targets[3];
    bool _leadsGroup = false;
};

} // namespace Kr

#pragma once

/// @file
/// A program that this one has started.
/// @code
/// const Kr::OsCommand sorter("sort", {"-r"});
/// const Kr::OsProcess::Result sorted = Kr::OsProcess::run(sorter, "b\nc\na\n", 10.);
/// if (sorted.ending == Kr::OsProcess::Complete && sorted.status.isSuccess())
///     std::cout << sorted.output; // c b a
///
/// Kr::OsCommand renderer("renderer", {"--frame", "17"}); // streams are this program's
/// Kr::OsProcess process(renderer.leadGroup());
/// if (!process.wait(3600.))
///     std::cerr << "Frame 17: " << process.end().getText() << '\n'; // asks first
/// @endcode
/// The program inherits its three standard streams and nothing else of this process, whatever other
/// threads start at the same time. What goes wrong before it runs raises, with the program's name
/// and the system's reason (`OsProcessEx`); it is never an exit status.
///
/// A process does not outlive its object: the destructor ends it by force. Let it go with `detach`.
///
/// Pitfalls:
/// - A program that writes more than a pipe holds waits until somebody reads. `wait`, or `read` of
///   one stream while the other fills, then never ends: use `communicate`, which serves all three.
/// - A pipe ends when the last process that has it closes it, also one that the program has left
///   behind. `communicate` does not wait for such (`setLinger`); `read` does.
/// - On a POSIX host the status is lost if another part of the program waits for any child.
///
/// An object belongs to one thread at a time. A fork of this program must not use its objects.

#include <base/krBaseApi.h>
#include <base/osCommand.h>
#include <base/osExitStatus.h>
#include <base/osFilePath.h>
#include <base/osProcessEx.h>

#include <cstddef>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Kr
{

/// Apart from the exported class, so that every program has it for itself.
struct OsProcessLimits
{
    static constexpr double unlimited = std::numeric_limits<double>::infinity(); ///< seconds
};

class KR_BASE_API OsProcess : public OsProcessLimits
{
public:
    using Stream = OsCommand::Stream;

    /// Takes what the program writes, piece by piece; the stream is the output or the errors.
    using Sink = std::function<void(Stream stream, std::string_view bytes)>;

    enum Ending
    {
        Complete, ///< the program has ended, and everything that it wrote is here
        TimeOver, ///< the time was over before that
        PipesHeld ///< it has ended; others, which it has left behind, hold its streams
    };

    struct Served
    {
        Ending ending = Complete;
        std::size_t inputTaken = 0; ///< bytes; fewer than there were if the program reads no more
    };

    struct Collected : Served
    {
        std::string output;
        std::string errors;
    };

    struct Result : Collected
    {
        OsExitStatus status = OsExitStatus(0);
    };

    /// Starts the program and serves it until it ends; if the time is over before, ends it by
    /// force. Streams that the command leaves alone are connected.
    [[nodiscard]] static Result run(const OsCommand& command, std::string_view input = {},
                                    double seconds = unlimited);

    /// Starts the program. Raises `OsProcessEx::ExNotStarted`, `ExNoStreamFile`,
    /// `ExArgumentsTooLong` and `ExUnsafeArgument`.
    explicit OsProcess(const OsCommand& command);
    OsProcess(OsProcess&& other) noexcept;
    OsProcess& operator=(OsProcess&& other) noexcept; ///< ends the one that it had
    OsProcess(const OsProcess&) = delete;
    OsProcess& operator=(const OsProcess&) = delete;
    ~OsProcess();

    // What follows raises `ExInternalError` for an object that has been moved from or detached.

    unsigned long getId() const;          ///< the system's number of the process
    const OsFilePath& getProgram() const; ///< the full path
    const std::string& getCommandLine() const;

    // Its end

    bool isRunning() const;

    /// Waits for the end.
    OsExitStatus wait();
    /// Waits so many seconds at most; returns whether the process has ended.
    bool wait(double seconds);

    /// Raises `OsProcessEx::ExRunning` before the end, and `ExStatusLost`, as `wait` and `end` do.
    OsExitStatus getExitStatus() const;

    /// The seconds of processor time that the process has used so far, or until its end; without
    /// its descendants.
    double getProcessorTime() const;

    /// Asks the process to end, as a user would: its windows to close, or its console or terminal
    /// to break it. Returns false if there is no way to ask. It may ignore it.
    bool requestEnd();
    /// Ends the process at once.
    void terminate();
    /// Asks first and leaves so many seconds, then ends by force; waits for the end.
    OsExitStatus end(double patience = 5.);

    /// Lets the process run on by itself; nothing remains of it here, nor when it ends.
    void detach();

    // Its streams, where the command has connected them with `OsCommand::pipeStream`. The others
    // raise `OsProcessEx::ExNotConnected`, as do those that have been closed.

    bool isConnected(Stream stream) const;

    /// Waits until the pipe has taken everything. Raises `OsProcessEx::ExInputClosed` if the
    /// program reads no more, and `ExSysErrorWindows`.
    void write(const void* data, std::size_t size);
    void write(std::string_view text);
    /// Waits until there is something; returns how many bytes there were, 0 at the end, where the
    /// stream is closed.
    std::size_t read(Stream stream, void* buffer, std::size_t size);
    /// Closes this process's end, which the program sees as the end of its input, or as a pipe that
    /// nobody reads.
    void close(Stream stream);

    /// Feeds the input and closes it, takes what the program writes, and waits for its end: of any
    /// size, and without anybody waiting for the other. If the time is over before, everything
    /// stays as it is: the process may be ended, or served on with the rest of the input. Raises
    /// `ExSysErrorWindows`, and what the sink raises.
    [[nodiscard]] Collected communicate(std::string_view input = {}, double seconds = unlimited);
    Served communicate(std::string_view input, const Sink& sink, double seconds = unlimited);

    /// For how many seconds after the program's end `communicate` still waits for more from pipes
    /// that others hold: 1 unless set. Returns the previous value.
    double setLinger(double seconds);
    double getLinger() const;

    // This process

    static unsigned long getCurrentId();
    static OsFilePath getCurrentProgram(); ///< the full path
    static std::string getCurrentCommandLine();
    /// The command line taken apart, the program's name first.
    static std::vector<std::string> getCurrentArguments();

private:
    struct State;
    struct Release
    {
        void operator()(State* state) const noexcept;
    };
    class Service;

    OsProcess(const OsCommand& command, OsCommand::Connection standard);

    State& getState() const;
    bool takes(Stream stream) const;
    void checkConnected(Stream stream) const;
    void checkSafe(const OsCommand& command) const;
    void endForSure() noexcept;

    // The system's part (osProcessWindows, osProcessPipesWindows)
    void performFind(const OsFilePath& program);
    void performStart(const OsCommand& command, OsCommand::Connection standard);
    bool performWait(double seconds) const;
    std::uint32_t performGetExitCode() const;
    double performGetProcessorTime() const;
    bool performRequestEnd() const;
    void performTerminate() const;
    std::size_t performWrite(const char* data, std::size_t size);
    std::size_t performRead(Stream stream, void* buffer, std::size_t size);
    void performClose(Stream stream);
    bool performIsConnected(Stream stream) const;
    Served performServe(std::string_view input, const Sink& sink, double seconds);

    std::unique_ptr<State, Release> _state;
    OsFilePath _program;
    std::string _commandLine;
    double _linger = 1.;
};

} // namespace Kr

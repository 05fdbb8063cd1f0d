#include <base/exSysError.h>
#include <base/internal/os/osTransferBlock.h>
#include <base/internal/processes/osProcessWindows.h>
#include <base/raise.h>

#include <algorithm>
#include <limits>

namespace Kr
{

namespace
{

DWORD cut(std::size_t size)
{
    return static_cast<DWORD>(std::min<std::size_t>(size, std::numeric_limits<DWORD>::max() / 2));
}

/// Moves something, however long it takes; 0 bytes: the other end is closed.
std::size_t transfer(KrPipe& pipe, void* data, std::size_t size)
{
    DWORD moved = 0;
    KrTransfer result = krBeginTransfer(pipe, data, cut(size), moved);
    for (;;)
    {
        if (result == KrTransfer::moved && moved != 0)
            return moved;
        if (result == KrTransfer::ended)
            return 0;
        if (result == KrTransfer::failed ||
            krWaitForTransfers(&pipe, 1, nullptr, pipe.isPending ? INFINITE : 0) == KrWait::failed)
        {
            const ExSysErrorWindows error(KR_HERE);
            krCancelTransfer(pipe, moved);
            raise(error);
        }
        // A child may write no bytes, which is not the end.
        result = pipe.isPending ? krFinishTransfer(pipe, moved)
                                : krBeginTransfer(pipe, data, cut(size), moved);
    }
}

} // namespace

/// Serves the pipes of one process until it is done or the time is over: each pipe goes on as long
/// as it can without waiting, then one wait is for all of them and for the process.
class OsProcess::Service
{
public:
    Service(State& state, std::string_view input, const Sink& sink, double seconds, double linger);
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;
    ~Service(); ///< takes back what is pending, whose bytes have no place any longer

    Served serve();

private:
    void advanceWhilePossible();
    bool advanceAll(bool looksAtPending);
    bool advance(Stream stream);
    KrTransfer begin(Stream stream, DWORD& moved);
    void deliver(Stream stream, DWORD moved);
    void cancel(Stream stream);
    bool isOpen(Stream stream) const { return _state.pipes[stream].handle != nullptr; }
    bool isComplete() const;
    bool isTimeOver() const { return _deadline.isOver() || _lingering.isOver(); }
    bool noticeEnd();
    void wait();

    static constexpr Stream streams[] = {OsCommand::Input, OsCommand::Output, OsCommand::Errors};

    State& _state;
    const std::string_view _input;
    const Sink& _sink;
    const OsDeadline _deadline;
    const double _linger;
    OsDeadline _lingering{unlimited}; ///< begins anew with all that comes after the process's end
    bool _mayHaveEnded = true;        ///< not known, or the last wait said so
    bool _hasEnded = false;
    std::size_t _taken = 0;
    const std::unique_ptr<OsTransferBlock[]> _blocks; ///< one for each stream that is read
};

OsProcess::Service::Service(State& state, std::string_view input, const Sink& sink, double seconds,
                            double linger)
    : _state(state)
    , _input(input)
    , _sink(sink)
    , _deadline(seconds)
    , _linger(linger)
    , _blocks(makeTransferBlocks(2))
{
}

OsProcess::Service::~Service()
{
    DWORD moved = 0;
    for (KrPipe& pipe : _state.pipes)
        if (pipe.isPending)
            krCancelTransfer(pipe, moved);
}

OsProcess::Served OsProcess::Service::serve()
{
    for (;;)
    {
        const bool isLastLook = isTimeOver(); // this thread may not have run for a while
        advanceWhilePossible();
        if ((_mayHaveEnded || isLastLook) && noticeEnd())
            continue; // what it has written last may have come just now
        if (isComplete() || (isLastLook && isTimeOver()))
            break;
        wait();
    }
    for (const Stream stream : streams)
        cancel(stream);
    const Ending rest = _lingering.isOver() ? PipesHeld : TimeOver;
    return {isComplete() ? Complete : rest, _taken};
}

/// While some pipe goes on without waiting, those that wait are looked at now and then.
void OsProcess::Service::advanceWhilePossible()
{
    constexpr unsigned roundsBetweenLooks = 16;
    for (unsigned round = 0; advanceAll(round % roundsBetweenLooks == 0); ++round)
    {
        if (_deadline.isOver())
            return;
        if (_hasEnded)
            _lingering = OsDeadline(_linger);
    }
}

/// Whether the process has been seen to end for the first time.
bool OsProcess::Service::noticeEnd()
{
    if (_hasEnded || WaitForSingleObject(_state.process.process, 0) != WAIT_OBJECT_0)
        return false;
    _hasEnded = true;
    _lingering = OsDeadline(_linger);
    return true;
}

void OsProcess::Service::wait()
{
    const DWORD limit = std::min(_deadline.getMilliseconds(), _lingering.getMilliseconds());
    const HANDLE process = _hasEnded ? nullptr : _state.process.process;
    const KrWait result = krWaitForTransfers(_state.pipes, std::size(_state.pipes), process, limit);
    if (result == KrWait::failed)
        raise<ExSysErrorWindows>(KR_HERE);
    _mayHaveEnded = result == KrWait::processEnded;
}

bool OsProcess::Service::isComplete() const
{
    return _hasEnded && std::none_of(std::begin(streams), std::end(streams),
                                     [this](Stream stream) { return isOpen(stream); });
}

/// Returns whether anything has moved.
bool OsProcess::Service::advanceAll(bool looksAtPending)
{
    bool hasMoved = false;
    for (const Stream stream : streams)
        if (isOpen(stream) && (looksAtPending || !_state.pipes[stream].isPending))
            hasMoved = advance(stream) || hasMoved;
    return hasMoved;
}

bool OsProcess::Service::advance(Stream stream)
{
    KrPipe& pipe = _state.pipes[stream];
    if (stream == OsCommand::Input && _taken == _input.size())
    {
        krClosePipe(pipe);
        return true;
    }
    DWORD moved = 0;
    const KrTransfer result = pipe.isPending ? krFinishTransfer(pipe, moved) : begin(stream, moved);
    if (result == KrTransfer::failed)
        raise<ExSysErrorWindows>(KR_HERE);
    if (result == KrTransfer::ended)
        krClosePipe(pipe);
    else if (result == KrTransfer::moved)
        deliver(stream, moved);
    return result != KrTransfer::pending;
}

KrTransfer OsProcess::Service::begin(Stream stream, DWORD& moved)
{
    KrPipe& pipe = _state.pipes[stream];
    constexpr std::size_t most = OsTransferBlock::size;
    if (stream != OsCommand::Input)
        return krBeginTransfer(pipe, _blocks[stream - OsCommand::Output].bytes, most, moved);
    auto* const data = const_cast<char*>(_input.data()) + _taken; // it is written from
    return krBeginTransfer(pipe, data, static_cast<DWORD>(std::min(_input.size() - _taken, most)),
                           moved);
}

void OsProcess::Service::deliver(Stream stream, DWORD moved)
{
    if (stream == OsCommand::Input)
        _taken += moved;
    else if (moved != 0)
        _sink(stream, {static_cast<const char*>(_state.pipes[stream].data), moved});
}

/// What the transfer has moved until now counts.
void OsProcess::Service::cancel(Stream stream)
{
    DWORD moved = 0;
    if (_state.pipes[stream].isPending &&
        krCancelTransfer(_state.pipes[stream], moved) == KrTransfer::moved)
        deliver(stream, moved);
}

// The operations

std::size_t OsProcess::performWrite(const char* data, std::size_t size)
{
    std::size_t taken = 0;
    while (taken != size)
    {
        const std::size_t moved = transfer(getState().pipes[OsCommand::Input],
                                           const_cast<char*>(data) + taken, size - taken);
        if (moved == 0)
            break;
        taken += moved;
    }
    return taken;
}

std::size_t OsProcess::performRead(Stream stream, void* buffer, std::size_t size)
{
    return transfer(getState().pipes[stream], buffer, size);
}

void OsProcess::performClose(Stream stream)
{
    krClosePipe(getState().pipes[stream]);
}

bool OsProcess::performIsConnected(Stream stream) const
{
    return getState().pipes[stream].handle != nullptr;
}

OsProcess::Served OsProcess::performServe(std::string_view input, const Sink& sink, double seconds)
{
    return Service(getState(), input, sink, seconds, _linger).serve();
}

} // namespace Kr

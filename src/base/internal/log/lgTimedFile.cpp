#include <base/internal/log/lgTimedFile.h>

#include <base/internal/log/lgOutput.h>
#include <base/internal/log/lgTry.h>

namespace Kr
{

namespace
{

constexpr std::chrono::seconds filePatience(5); // a disk may be busy for long

} // namespace

class LgTimedFile::Call : public LgHelper::Errand
{
public:
    explicit Call(std::unique_ptr<LgFile> which)
        : file(std::move(which))
    {
        text.reserve(2 * LgOutput::batchSize);
    }

    std::unique_ptr<LgFile> file;
    Action action = nullptr;
    std::size_t removed = 0;
    std::string text;
    std::size_t result = 0;

protected:
    void perform() noexcept override { result = action(*this); }
};

std::unique_ptr<LgFile> LgTimedFile::create(const LgFileSettings& settings,
                                            const std::shared_ptr<LgHelper>& helper)
{
    return std::make_unique<LgTimedFile>(LgFile::create(settings), helper, filePatience);
}

LgTimedFile::LgTimedFile(std::unique_ptr<LgFile> file, std::shared_ptr<LgHelper> helper,
                         std::chrono::milliseconds patience)
    : _helper(std::move(helper))
    , _patience(patience)
    , _call(std::make_shared<Call>(std::move(file)))
{
}

/// A call that has not come back keeps the file.
LgTimedFile::~LgTimedFile()
{
    if (isBack())
        run(
            [](Call& call) -> std::size_t
            {
                call.file.reset();
                return 0;
            });
}

std::size_t LgTimedFile::append(const char* text, std::size_t size) noexcept
{
    return write(text, size, 0,
                 [](Call& call) { return call.file->append(call.text.data(), call.text.size()); });
}

bool LgTimedFile::replaceEnd(std::size_t removed, const char* text, std::size_t size) noexcept
{
    const auto replace = [](Call& call) -> std::size_t
    {
        const bool isDone = call.file->replaceEnd(call.removed, call.text.data(), call.text.size());
        return isDone ? call.text.size() : 0;
    };
    return write(text, size, removed, replace) != 0;
}

/// Without memory for a copy of the text the file has it, and there is no limit.
std::size_t LgTimedFile::write(const char* text, std::size_t size, std::size_t removed,
                               Action action) noexcept
{
    if (!isBack())
        return 0;
    if (_pending == 0 && !_call->file->isFar())
        return writeDirectly(text, size, removed);
    if (_pending == 0)
    {
        _call->removed = removed;
        if (!lgTry([&] { _call->text.assign(text, size); }))
            return writeDirectly(text, size, removed);
        _pending = run(action) ? 0 : size;
        return _pending == 0 ? _call->result : 0;
    }
    _pending = 0;
    return _call->result;
}

std::size_t LgTimedFile::writeDirectly(const char* text, std::size_t size,
                                       std::size_t removed) noexcept
{
    if (removed == 0)
        return _call->file->append(text, size);
    return _call->file->replaceEnd(removed, text, size) ? size : 0;
}

bool LgTimedFile::sync() noexcept
{
    return isBack() && _pending == 0 &&
           run([](Call& call) -> std::size_t { return call.file->sync() ? 1 : 0; }) &&
           _call->result != 0;
}

void LgTimedFile::rest() noexcept
{
    if (isBack() && _pending == 0)
        run(
            [](Call& call) -> std::size_t
            {
                call.file->rest();
                return 0;
            });
}

std::string LgTimedFile::getProblem() const
{
    return _isLate ? "It does not answer." : _call->file->getProblem();
}

std::string LgTimedFile::takeNews()
{
    return _isLate ? std::string() : _call->file->takeNews();
}

/// Whether the last call has come back.
bool LgTimedFile::isBack() noexcept
{
    _isLate = !_call->isDone();
    return !_isLate;
}

/// Returns whether the call has come back in time.
bool LgTimedFile::run(Action action) noexcept
{
    _call->action = action;
    if (!_call->file->isFar())
    {
        _call->result = action(*_call);
        return true;
    }
    _isLate = !_helper->run(_call, _patience);
    return !_isLate;
}

} // namespace Kr

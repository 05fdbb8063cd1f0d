#include <base/internal/log/lgStandardStream.h>

#include <base/internal/log/lgHelper.h>
#include <base/internal/log/lgTry.h>

#include <platform/logFile.h>

#include <atomic>
#include <memory>

namespace Kr
{

namespace
{

constexpr unsigned streamPatience = 1000; // in milliseconds

std::atomic<int> underWay{0}; // complaints

void write(const std::string& text) noexcept
{
    static_cast<void>(krWriteStandard(stderr, text.data(), text.size(), streamPatience));
}

class Complaint : public LgHelper::Errand
{
public:
    explicit Complaint(const std::string& text)
        : _text(text)
    {
    }

protected:
    void perform() noexcept override
    {
        write(_text);
        --underWay;
    }

private:
    const std::string _text;
};

} // namespace

/// The first failure may take a while, those after it are told at once.
std::size_t LgStandardStream::append(const char* text, std::size_t size) noexcept
{
    const std::size_t written = krWriteStandard(_stream, text, size, _isStuck ? 0 : streamPatience);
    _isFar = krIsFarStandard(_stream);
    _isStuck = written != size;
    if (_isStuck)
        _problem.take();
    return written;
}

/// By a thread of its own: where nobody reads the stream and the system knows no limit, it stays
/// with the text, and what else there is to say is left out.
void LgStandardStream::complain(const std::string& text) noexcept
{
    constexpr int mostUnderWay = 2;
    if (underWay.fetch_add(1) >= mostUnderWay)
    {
        --underWay;
        return;
    }
    std::shared_ptr<Complaint> complaint;
    if (lgTry([&] { complaint = std::make_shared<Complaint>(text); }))
    {
        LgHelper().run(complaint, patience);
        return;
    }
    write(text);
    --underWay;
}

} // namespace Kr

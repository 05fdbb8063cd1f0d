#include <base/internal/log/lgSharedFile.h>

#include <base/internal/errors/processIdentity.h>
#include <base/internal/log/lgStandardStream.h>

#include <new>

namespace Kr
{

namespace
{

constexpr std::chrono::milliseconds lockPatience(500);
constexpr std::chrono::milliseconds retryInterval(250);

} // namespace

LgSharedFile::LgSharedFile(const LgFileSettings& settings)
    : _settings(settings)
    , _shared(settings)
{
}

/// Puts the process's number before the extension.
std::string LgSharedFile::getOwnPath(const std::string& path, std::uint32_t process)
{
    const std::size_t name = path.find_last_of("/\\") + 1; // 0 if there is no separator
    const std::size_t dot = path.rfind('.');
    const bool hasExtension = dot != std::string::npos && dot > name;
    return std::string(path).insert(hasExtension ? dot : path.size(),
                                    '-' + std::to_string(process));
}

LgSharedFile::~LgSharedFile()
{
    if (_own != nullptr)
        _own->leave();
}

std::size_t LgSharedFile::append(const char* text, std::size_t size) noexcept
{
    try
    {
        return performAppend(text, size);
    }
    catch (const std::bad_alloc&)
    {
        _problem.setNoMemory();
        return 0;
    }
}

std::size_t LgSharedFile::performAppend(const char* text, std::size_t size)
{
    if (_isAway && std::chrono::steady_clock::now() < _nextTry)
        return appendToOwn(text, size);
    std::size_t taken = 0;
    const auto patience = _isAway ? std::chrono::milliseconds(0) : lockPatience;
    switch (_shared.append(text, size, patience, taken))
    {
    case LgAppendedFile::Outcome::done:
        comeBack();
        break;
    case LgAppendedFile::Outcome::failed:
        _problem = _shared.getProblem();
        break;
    case LgAppendedFile::Outcome::busy:
        goAway();
        return appendToOwn(text, size);
    }
    return taken;
}

std::size_t LgSharedFile::appendToOwn(const char* text, std::size_t size)
{
    std::size_t taken = 0;
    const auto outcome = _own->append(text, size, std::chrono::milliseconds(0), taken);
    if (outcome == LgAppendedFile::Outcome::failed)
        _problem = _own->getProblem();
    else if (outcome == LgAppendedFile::Outcome::busy)
        _problem.setInUse();
    return taken;
}

void LgSharedFile::goAway()
{
    if (_own == nullptr)
    {
        LgFileSettings own = _settings;
        own.path = getOwnPath(_settings.path, ProcessIdentity::getProcessId());
        _own = std::make_unique<LgAppendedFile>(own);
    }
    _nextTry = std::chrono::steady_clock::now() + retryInterval;
    _isAway = true;
    if (_hasComplained)
        return;
    _hasComplained = true;
    LgStandardStream::complain("Another process holds the log " + _settings.path +
                               ": this one goes on in " + _own->getPath() +
                               " until it can come back.\n");
}

void LgSharedFile::comeBack() noexcept
{
    if (!_isAway)
        return;
    _own->leave();
    _isAway = false;
    _hasNews = true;
}

/// Both stand in one folder.
bool LgSharedFile::isFar() const noexcept
{
    return _shared.isFar();
}

bool LgSharedFile::sync() noexcept
{
    const bool isSharedDone = _shared.sync();
    const bool isOwnDone = _own == nullptr || _own->sync();
    if (!isSharedDone)
        _problem = _shared.getProblem();
    else if (!isOwnDone)
        _problem = _own->getProblem();
    return isSharedDone && isOwnDone;
}

void LgSharedFile::rest() noexcept
{
    _shared.rest();
}

std::string LgSharedFile::getProblem() const
{
    return _problem.getText();
}

std::string LgSharedFile::takeNews()
{
    if (!_hasNews)
        return {};
    std::string news =
        "Another process held this file: messages before this one stand in " + _own->getPath();
    _hasNews = false;
    return news;
}

} // namespace Kr

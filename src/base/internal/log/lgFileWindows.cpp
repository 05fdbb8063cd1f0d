#include <base/internal/log/lgFile.h>

#include <base/internal/errors/systemError.h>
#include <base/internal/log/lgInterProcessLock.h>

#include <platform/platform.h>

#include <new>

namespace Kr
{

namespace
{

constexpr std::chrono::seconds lockPatience(1);

/// An open file of the system, closed at the end.
class Handle
{
public:
    explicit Handle(HANDLE handle = INVALID_HANDLE_VALUE)
        : _handle(handle)
    {
    }

    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    ~Handle() { reset(INVALID_HANDLE_VALUE); }

    void reset(HANDLE handle)
    {
        if (isOpen())
            CloseHandle(_handle);
        _handle = handle;
    }

    bool isOpen() const { return _handle != INVALID_HANDLE_VALUE; }
    HANDLE get() const { return _handle; }

private:
    HANDLE _handle;
};

HANDLE openShared(const std::string& path, DWORD access, DWORD disposition)
{
    return CreateFileA(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                       nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
}

bool isSeparator(char c)
{
    return c == '/' || c == '\\';
}

/// Makes the folders above the file. What cannot be made shows when the file is opened.
void makeFoldersAbove(const std::string& path)
{
    for (std::size_t i = 1; i < path.size(); ++i)
        if (isSeparator(path[i]) && !isSeparator(path[i - 1]) && path[i - 1] != ':')
            CreateDirectoryA(path.substr(0, i).c_str(), nullptr);
}

class LgFileWindows : public LgFile
{
public:
    explicit LgFileWindows(const LgFileSettings& settings)
        : _settings(settings)
    {
    }

    bool append(const char* text, std::size_t size) noexcept override;
    bool removeEnd(std::size_t size) noexcept override;
    bool sync() noexcept override;
    std::string getProblem() const override;

private:
    bool performAppend(const char* text, std::size_t size);
    bool open();
    bool isCurrent() const;
    bool hasRoom(std::size_t size) const;
    bool rotate() const;
    bool write(const char* text, std::size_t size, bool alone);
    bool takeBack(std::int64_t size) const;
    std::int64_t getSize() const;
    bool failed();

    const LgFileSettings _settings;
    Handle _file;
    DWORD _problem = ERROR_SUCCESS;
    bool _isTorn = false; ///< the file ends in part of a line that could not be taken back
};

bool LgFileWindows::append(const char* text, std::size_t size) noexcept
{
    try
    {
        return performAppend(text, size);
    }
    catch (const std::bad_alloc&)
    {
        _problem = ERROR_NOT_ENOUGH_MEMORY;
        return false;
    }
}

bool LgFileWindows::removeEnd(std::size_t size) noexcept
{
    return takeBack(getSize() - static_cast<std::int64_t>(size)) || failed();
}

bool LgFileWindows::sync() noexcept
{
    return !_file.isOpen() || FlushFileBuffers(_file.get()) != 0 || failed();
}

std::string LgFileWindows::getProblem() const
{
    char text[256];
    formatSystemError(_problem, text, sizeof text);
    return text;
}

/// Another process may have rotated the file between the opening and the lock: then the lock is
/// given up and the new file opened, as often as that happens.
bool LgFileWindows::performAppend(const char* text, std::size_t size)
{
    constexpr int maxAttempts = 100;
    for (int attempt = 1;; ++attempt)
    {
        if (!open())
            return failed();
        LgInterProcessLock lock(_file.get());
        // Without the lock an append in one piece still arrives whole on most file systems.
        const bool alone =
            !_settings.isLocked || _settings.isExclusive || lock.acquire(lockPatience);
        const bool current = isCurrent();
        const bool wantsNew = !current || !hasRoom(size);
        if (!wantsNew || attempt == maxAttempts || (current && !rotate()))
            return write(text, size, alone);
        lock.release();
        _file.reset(INVALID_HANDLE_VALUE);
        _isTorn = false;
    }
}

bool LgFileWindows::open()
{
    if (_file.isOpen())
        return true;
    makeFoldersAbove(_settings.path);
    if (_settings.isExclusive)
        _file.reset(CreateFileA(_settings.path.c_str(), GENERIC_READ | GENERIC_WRITE,
                                FILE_SHARE_READ, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                                nullptr));
    else
        _file.reset(openShared(_settings.path, GENERIC_READ | FILE_APPEND_DATA, OPEN_ALWAYS));
    return _file.isOpen();
}

/// Whether the open file is still the one that its path names.
bool LgFileWindows::isCurrent() const
{
    if (_settings.isExclusive)
        return true;
    const Handle named(openShared(_settings.path, 0, OPEN_EXISTING));
    BY_HANDLE_FILE_INFORMATION here = {};
    BY_HANDLE_FILE_INFORMATION there = {};
    return named.isOpen() && GetFileInformationByHandle(_file.get(), &here) != 0 &&
           GetFileInformationByHandle(named.get(), &there) != 0 &&
           here.dwVolumeSerialNumber == there.dwVolumeSerialNumber &&
           here.nFileIndexHigh == there.nFileIndexHigh && here.nFileIndexLow == there.nFileIndexLow;
}

bool LgFileWindows::hasRoom(std::size_t size) const
{
    const auto used = static_cast<std::uint64_t>(getSize());
    return _settings.maxSize == 0 || used == 0 || used + size <= _settings.maxSize;
}

bool LgFileWindows::rotate() const
{
    for (int number = _settings.keptFiles - 1; number >= 0; --number)
    {
        const std::string from =
            number == 0 ? _settings.path : _settings.path + '.' + std::to_string(number);
        const std::string to = _settings.path + '.' + std::to_string(number + 1);
        if (MoveFileExA(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING) == 0 && number == 0)
            return false;
    }
    return true;
}

bool LgFileWindows::write(const char* text, std::size_t size, bool alone)
{
    const std::int64_t before = getSize();
    DWORD written = 0;
    if (_isTorn && WriteFile(_file.get(), "\n", 1, &written, nullptr) == 0)
        return failed();
    _isTorn = false;
    if (WriteFile(_file.get(), text, static_cast<DWORD>(size), &written, nullptr) != 0)
        return true;
    static_cast<void>(failed());
    if (getSize() != before)
        _isTorn = !alone || !takeBack(before);
    return false;
}

/// Cuts the file back to that size. A handle that appends cannot do it.
bool LgFileWindows::takeBack(std::int64_t size) const
{
    Handle other;
    if (!_settings.isExclusive)
        other.reset(openShared(_settings.path, GENERIC_WRITE, OPEN_EXISTING));
    const HANDLE file = _settings.isExclusive ? _file.get() : other.get();
    LARGE_INTEGER end = {};
    end.QuadPart = size;
    return SetFilePointerEx(file, end, nullptr, FILE_BEGIN) != 0 && SetEndOfFile(file) != 0;
}

std::int64_t LgFileWindows::getSize() const
{
    LARGE_INTEGER size = {};
    return GetFileSizeEx(_file.get(), &size) != 0 ? size.QuadPart : 0;
}

/// Keeps the reason of a failed call; false, for the caller to return.
bool LgFileWindows::failed()
{
    _problem = GetLastError();
    return false;
}

} // namespace

LgFile::~LgFile() = default;

bool LgFile::removeEnd(std::size_t) noexcept
{
    return false;
}

std::unique_ptr<LgFile> LgFile::create(const LgFileSettings& settings)
{
    return std::make_unique<LgFileWindows>(settings);
}

} // namespace Kr

#include <base/internal/log/lgRingFile.h>

#include <base/internal/errors/processIdentity.h>
#include <base/internal/log/lgFolder.h>
#include <base/internal/log/lgProblem.h>
#include <base/internal/log/lgTry.h>

#include <platform/logFile.h>
#include <platform/platform.h>

#include <filesystem>
#include <new>
#include <utility>

namespace Kr
{

namespace
{

constexpr DWORD shared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr int maxFilesOfProcess = 1000; // those included that earlier ones of its number have left

HANDLE openFile(const std::string& path) noexcept
{
    return CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, shared, nullptr, OPEN_EXISTING,
                       FILE_ATTRIBUTE_NORMAL, nullptr);
}

/// Takes the byte that stands for the file, far behind its end.
bool lock(HANDLE file) noexcept
{
    OVERLAPPED range = {};
    range.OffsetHigh = 0x3FFFFFFF;
    return LockFileEx(file, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &range) !=
           0;
}

std::string getName(int number)
{
    std::string name = LgRingFormat::namePrefix + std::to_string(ProcessIdentity::getProcessId());
    if (number != 0)
        name += '-' + std::to_string(number);
    return name + LgRingFormat::nameSuffix;
}

void closeHandle(void*& handle) noexcept
{
    if (handle != nullptr)
        CloseHandle(std::exchange(handle, nullptr));
}

/// Whether it is an ordinary file that has a name.
bool isOrdinary(HANDLE file) noexcept
{
    constexpr DWORD others =
        FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_REPARSE_POINT;
    BY_HANDLE_FILE_INFORMATION found = {};
    return GetFileInformationByHandle(file, &found) != 0 && found.nNumberOfLinks == 1 &&
           (found.dwFileAttributes & others) == 0;
}

} // namespace

std::unique_ptr<LgRingFile> LgRingFile::create(const LgSettings& settings, std::string& problem)
{
    std::unique_ptr<LgRingFile> file(new LgRingFile);
    file->_chunks.reserve(LgRingFormat::maxChunks);
    if (file->make(settings))
        return file;
    LgProblem reason;
    reason.take();
    lgTry([&] { problem = reason.getText(); });
    return file->_path.empty() ? nullptr : std::move(file);
}

/// Takes the first name that is free. No other process makes files of this one's number.
bool LgRingFile::make(const LgSettings& settings)
{
    const std::filesystem::path folder(settings.directory);
    for (int number = 0; number < maxFilesOfProcess; ++number)
    {
        const std::string path = (folder / getName(number)).string();
        if (number == 0 && !LgFolder::makeAbove(path, settings.getPrivateFolder(path)))
            return false;
        if (krLogExists(path.c_str()))
            continue;
        if (open(path))
            return true;
        if (GetLastError() != ERROR_LOCK_VIOLATION) // by one who has found the file meanwhile
            return false;
    }
    return false;
}

/// The file is nobody's between its making and the lock: who finds it then finds it empty, and
/// leaves it alone. It is made as a log is, for the same readers.
bool LgRingFile::open(std::string path) noexcept
{
    KrLogFile made;
    if (!made.open(path.c_str(), false))
        return false;
    made.close();
    _path = std::move(path);
    const HANDLE owner = openFile(_path);
    if (owner != INVALID_HANDLE_VALUE)
        _owner = owner;
    const HANDLE file = _owner != nullptr && lock(_owner) ? openFile(_path) : INVALID_HANDLE_VALUE;
    if (file != INVALID_HANDLE_VALUE)
    {
        _file = file;
        return true;
    }
    const DWORD problem = GetLastError();
    close();
    SetLastError(problem);
    return false;
}

LgRingFile::~LgRingFile()
{
    close();
}

/// The name goes before the lock, so that nobody finds the file.
void LgRingFile::close() noexcept
{
    for (void* chunk : _chunks)
        UnmapViewOfFile(chunk);
    _chunks.clear();
    closeHandle(_file);
    removeName();
    closeHandle(_owner);
}

void* LgRingFile::addChunk() noexcept
{
    const std::lock_guard<std::mutex> lock(_mutex);
    if (_chunks.size() == LgRingFormat::maxChunks || _file == nullptr)
        return nullptr;
    const auto begin = static_cast<DWORD>(_chunks.size() * LgRingFormat::chunkSize);
    const HANDLE mapping = CreateFileMappingA(_file, nullptr, PAGE_READWRITE, 0,
                                              begin + LgRingFormat::chunkSize, nullptr);
    if (mapping == nullptr)
        return nullptr;
    void* const chunk = MapViewOfFile(mapping, FILE_MAP_WRITE, 0, begin, LgRingFormat::chunkSize);
    CloseHandle(mapping);
    if (chunk != nullptr)
        _chunks.push_back(chunk);
    return chunk;
}

void LgRingFile::removeName() noexcept
{
    if (!_path.empty() && DeleteFileA(_path.c_str()) != 0)
        _path.clear();
}

void LgRingFile::abandon() noexcept
{
    _path.clear();
    closeHandle(_file);
    closeHandle(_owner);
}

std::unique_ptr<LgFoundRings> LgFoundRings::open(const std::string& path)
{
    std::error_code error;
    if (!std::filesystem::is_regular_file(std::filesystem::symlink_status(path, error)))
        return nullptr;
    const HANDLE file = openFile(path);
    if (file == INVALID_HANDLE_VALUE)
        return nullptr;
    std::unique_ptr<LgFoundRings> found(new LgFoundRings(path, file));
    return lock(file) && isOrdinary(file) ? std::move(found) : nullptr;
}

LgFoundRings::~LgFoundRings()
{
    CloseHandle(_file);
}

bool LgFoundRings::readChunk(unsigned char (&chunk)[LgRingFormat::chunkSize]) noexcept
{
    DWORD size = 0;
    for (DWORD read = 1; size < sizeof chunk && read != 0; size += read)
        if (ReadFile(_file, chunk + size, static_cast<DWORD>(sizeof chunk) - size, &read,
                     nullptr) == 0)
            return false;
    return size == sizeof chunk;
}

bool LgFoundRings::remove() noexcept
{
    return DeleteFileA(_path.c_str()) != 0;
}

} // namespace Kr

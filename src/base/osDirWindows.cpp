#include <base/osDir.h>

#include <base/exSysError.h>
#include <base/internal/os/osDirSearch.h>
#include <base/internal/os/osFsUtilsWindows.h>
#include <base/raise.h>
#include <platform/anyPath.h>

#include <cstring>

namespace Kr
{

namespace
{

bool isMissing(DWORD error)
{
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

bool isDots(const char* name)
{
    return name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'));
}

} // namespace

// A directory's names

struct OsDirSearch::State : KrSearch
{
    State() = default;
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State() { close(); }

    void close()
    {
        if (handle != INVALID_HANDLE_VALUE)
            FindClose(handle);
        handle = INVALID_HANDLE_VALUE;
    }
};

OsDirSearch::OsDirSearch() = default;
OsDirSearch::OsDirSearch(OsDirSearch&& other) noexcept = default;
OsDirSearch& OsDirSearch::operator=(OsDirSearch&& other) noexcept = default;
OsDirSearch::~OsDirSearch() = default;

/// A directory that somebody removes meanwhile is refused for any reason, and then gone.
bool OsDirSearch::open(const char* directory)
{
    constexpr int attempts = 20;
    constexpr DWORD pause = 1; // milliseconds
    _state = std::make_unique<State>();
    for (int attempt = 1; !krFindFirst(directory, *_state); ++attempt)
    {
        const DWORD error = GetLastError();
        if (isMissing(error) || krGetAttributes(directory) == INVALID_FILE_ATTRIBUTES)
            return false;
        SetLastError(error);
        if (attempt == attempts)
            raise<ExSysErrorWindows>(KR_HERE);
        Sleep(pause);
    }
    return !isDots(_state->name) || next();
}

bool OsDirSearch::next()
{
    if (_state == nullptr || _state->handle == INVALID_HANDLE_VALUE)
        return false;
    while (krFindNext(*_state))
        if (!isDots(_state->name))
            return true;
    const DWORD error = GetLastError();
    _state->close();
    SetLastError(error);
    if (error != ERROR_NO_MORE_FILES && !isMissing(error))
        raise<ExSysErrorWindows>(KR_HERE);
    return false;
}

const char* OsDirSearch::getName() const noexcept
{
    return _state->name;
}

OsFileTypes::ElementType OsDirSearch::getType() const noexcept
{
    return OsFsUtilsWindows::getType(_state->attributes);
}

bool OsDirSearch::isLink() const noexcept
{
    return (_state->attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

// The directory itself

bool OsDir::performExists() const
{
    const DWORD attributes = krGetAttributes(_path.getChars());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool OsDir::performCreate() const
{
    if (krCreateDirectory(_path.getChars()))
        return true;
    if (GetLastError() != ERROR_ALREADY_EXISTS)
        raise<ExSysErrorWindows>(KR_HERE);
    return false;
}

void OsDir::performRemove() const
{
    if (!krRemoveDirectory(_path.getChars()))
        raise<ExSysErrorWindows>(KR_HERE);
}

/// False if it is not there any more.
bool OsDir::performRemoveElement(const char* path, bool isDirectory)
{
    const auto attempt = [&] { return isDirectory ? krRemoveDirectory(path) : krDeleteFile(path); };
    if (attempt())
        return true;
    if (GetLastError() == ERROR_ACCESS_DENIED)
    {
        krSetAttributes(path, FILE_ATTRIBUTE_NORMAL); // if it was for being read-only
        if (attempt())
            return true;
    }
    if (!isMissing(GetLastError()))
        raise<ExSysErrorWindows>(KR_HERE);
    return false;
}

} // namespace Kr

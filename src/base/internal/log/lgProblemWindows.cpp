#include <base/internal/log/lgProblem.h>

#include <base/internal/errors/systemError.h>

#include <platform/logFile.h>

namespace Kr
{

namespace
{

constexpr DWORD notAFile = 0x20000100;

} // namespace

void LgProblem::take() noexcept
{
    _code = GetLastError();
}

void LgProblem::setInUse() noexcept
{
    _code = ERROR_SHARING_VIOLATION;
}

void LgProblem::setNotAFile() noexcept
{
    _code = notAFile;
}

void LgProblem::setNoMemory() noexcept
{
    _code = ERROR_NOT_ENOUGH_MEMORY;
}

std::string LgProblem::getText() const
{
    switch (_code)
    {
    case krErrorIsLink:
        return "It is a link, and the log is not written through links.";
    case krErrorIsPrepared:
        return "Another user has put it there.";
    case krErrorIsOpen:
        return "Its folder is not this user's alone.";
    case krErrorNobodyReads:
        return "Nobody reads it.";
    case notAFile:
        return "It is not a file.";
    default:
        break;
    }
    char text[256];
    formatSystemError(_code, text, sizeof text);
    return text;
}

bool LgProblem::isInUse() const noexcept
{
    return _code == ERROR_SHARING_VIOLATION;
}

} // namespace Kr

#include <base/internal/log/lgFolder.h>

#include <platform/logFile.h>

namespace Kr
{

namespace
{

/// With those above it, which mostly are there.
bool makeFolder(const std::string& path)
{
    if (path.empty() || krMakeLogFolder(path.c_str(), false))
        return true;
    const bool lacksFolder =
        GetLastError() == ERROR_FILE_NOT_FOUND || GetLastError() == ERROR_PATH_NOT_FOUND;
    const std::string above = LgFolder::getFolder(path);
    return lacksFolder && above.size() < path.size() && makeFolder(above) &&
           krMakeLogFolder(path.c_str(), false);
}

} // namespace

std::string LgFolder::getFolder(const std::string& path)
{
    const std::size_t separator = path.find_last_of("/\\");
    return separator == std::string::npos ? std::string() : path.substr(0, separator);
}

bool LgFolder::makeAbove(const std::string& path, const std::string& privateFolder)
{
    if (!privateFolder.empty())
    {
        makeFolder(getFolder(privateFolder));
        if (!krMakeLogFolder(privateFolder.c_str(), true) ||
            !krIsPrivateFolder(privateFolder.c_str()))
            return false;
    }
    makeFolder(getFolder(path)); // what cannot be made shows when the file is opened
    return true;
}

std::string LgFolder::getUserName()
{
    return krUserName();
}

} // namespace Kr

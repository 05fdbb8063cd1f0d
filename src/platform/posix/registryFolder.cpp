#include <platform/posix/registryFolder.h>

#include <platform/posix/sameName.h>

#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <thread>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

// The names of the store's own files begin with "@", which those of keys do not.

namespace
{

constexpr char lockFile[] = "@lock";
constexpr char newFile[] = "@new";

const char* getAbsolute(const char* variable)
{
    const char* const path = std::getenv(variable);
    return path != nullptr && *path == '/' ? path : nullptr;
}

std::string getUserFolder()
{
    if (const char* const folder = getAbsolute("XDG_CONFIG_HOME"))
        return folder;
    const char* const home = getAbsolute("HOME");
    return home != nullptr ? home + std::string("/.config") : "";
}

std::string getMachineFolder()
{
    const char* const folders = getAbsolute("XDG_CONFIG_DIRS");
    const std::string list = folders != nullptr ? folders : "/etc/xdg";
    return list.substr(0, list.find(':'));
}

/// Whoever may read a folder's files may also list it.
mode_t folderMode(mode_t fileMode)
{
    return fileMode | (fileMode & 0444U) >> 2U;
}

bool makeFolders(const std::string& path, mode_t mode)
{
    if (::mkdir(path.c_str(), mode) == 0 || errno == EEXIST)
        return true;
    const std::size_t parent = path.rfind('/');
    return errno == ENOENT && parent != 0 && parent != path.npos &&
           makeFolders(path.substr(0, parent), mode) &&
           (::mkdir(path.c_str(), mode) == 0 || errno == EEXIST);
}

KrDescriptor openFolder(int base, const char* name)
{
    return KrDescriptor(::openat(base, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

// --- names of folders ---------------------------------------------------------------------------

/// A key's name as a folder's: "%2f" stands for what a folder's name cannot hold, and for what the
/// store's own names begin with.
std::string encodeName(const std::string& name)
{
    constexpr char digits[] = "0123456789abcdef";
    std::string encoded;
    for (const char c : name)
    {
        const auto byte = static_cast<unsigned char>(c);
        const bool isSpecialFirst = encoded.empty() && (c == '.' || c == '@');
        if (byte >= 0x20 && byte != 0x7F && c != '/' && c != '%' && !isSpecialFirst)
            encoded += c;
        else
            ((encoded += '%') += digits[byte >> 4U]) += digits[byte & 0xFU];
    }
    return encoded;
}

std::string decodeName(const std::string& encoded)
{
    std::string name;
    for (std::size_t i = 0; i < encoded.size(); ++i)
    {
        unsigned byte = 0;
        const char* const end = encoded.data() + std::min(i + 3, encoded.size());
        const bool isCode = encoded[i] == '%' &&
                            std::from_chars(encoded.data() + i + 1, end, byte, 16).ptr == end &&
                            end == encoded.data() + i + 3;
        name += isCode ? static_cast<char>(byte) : encoded[i];
        i += isCode ? 2 : 0;
    }
    return name;
}

bool isFolder(int base, const dirent& entry)
{
    if (entry.d_type != DT_UNKNOWN && entry.d_type != DT_LNK)
        return entry.d_type == DT_DIR;
    struct stat status = {};
    return ::fstatat(base, entry.d_name, &status, 0) == 0 && S_ISDIR(status.st_mode);
}

/// Calls `visit` for the folder of each key until it returns false. Returns false, with `errno`
/// set, if they cannot be listed.
template <class Visit>
bool visitFolders(int base, Visit visit)
{
    struct Close
    {
        void operator()(DIR* directory) const { ::closedir(directory); }
    };
    const int listed = ::openat(base, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const std::unique_ptr<DIR, Close> directory(listed >= 0 ? ::fdopendir(listed) : nullptr);
    if (directory == nullptr)
    {
        if (listed >= 0)
            ::close(listed);
        return false;
    }
    while (const dirent* const entry = ::readdir(directory.get()))
        if (entry->d_name[0] != '.' && entry->d_name[0] != '@' && isFolder(base, *entry) &&
            !visit(entry->d_name))
            break;
    return true;
}

/// The folder's name of a key as it is spelt there; as it would be if there is none.
std::string findFolder(int base, const std::string& key)
{
    std::string encoded = encodeName(key);
    struct stat status = {};
    if (::fstatat(base, encoded.c_str(), &status, 0) == 0)
        return encoded;
    visitFolders(base,
                 [&](const char* name)
                 {
                     const bool isSame = krIsSameName(name, encoded);
                     if (isSame)
                         encoded = name;
                     return !isSame;
                 });
    return encoded;
}

bool writeAll(int file, const std::string& text)
{
    for (std::size_t written = 0; written < text.size();)
    {
        const ssize_t count = ::write(file, text.data() + written, text.size() - written);
        if (count >= 0)
            written += static_cast<std::size_t>(count);
        else if (errno != EINTR)
            return false;
    }
    return true;
}

/// Where a key's folder goes before it is removed.
std::string getAside(const KrRegistryRoot& root)
{
    return root.folder + "/@removed";
}

void clearAside(const KrRegistryRoot& root)
{
    std::error_code error;
    std::filesystem::remove_all(getAside(root), error);
}

struct flock wholeFile(int type)
{
    struct flock lock = {};
    lock.l_type = static_cast<short>(type);
    lock.l_whence = SEEK_SET;
    return lock;
}

DWORD lastStatus()
{
    return krErrorFromErrno(errno);
}

} // namespace

// --- descriptors --------------------------------------------------------------------------------

KrDescriptor::KrDescriptor(KrDescriptor&& other) noexcept
    : _descriptor(std::exchange(other._descriptor, -1))
{
}

KrDescriptor& KrDescriptor::operator=(KrDescriptor&& other) noexcept
{
    KrDescriptor taken(std::move(other));
    std::swap(_descriptor, taken._descriptor);
    return *this;
}

KrDescriptor::~KrDescriptor()
{
    const int error = errno;
    if (_descriptor >= 0)
        ::close(_descriptor);
    errno = error;
}

// --- roots and their lock -----------------------------------------------------------------------

KrRegistryRoot KrRegistryRoot::get(bool isMachine)
{
    KrRegistryRoot root{isMachine ? getMachineFolder() : getUserFolder(),
                        static_cast<mode_t>(isMachine ? 0644 : 0600)};
    if (!root.folder.empty())
        root.folder += "/krbase/registry";
    return root;
}

KrDescriptor KrRegistryRoot::open() const
{
    return openFolder(AT_FDCWD, folder.c_str());
}

std::chrono::milliseconds KrRegistryLock::patience(10000);

KrRegistryLock::KrRegistryLock(const KrRegistryRoot& root)
    : _status(ERROR_PATH_NOT_FOUND)
{
    if (root.folder.empty())
        return;
    makeFolders(root.folder, folderMode(root.mode));
    const std::string path = root.folder + '/' + lockFile;
    _file =
        KrDescriptor(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, root.mode));
    _status = _file.isOpen() ? acquire() : lastStatus();
    if (_status == ERROR_SUCCESS)
        clearAside(root); // of a process that was killed while it removed a key
}

KrRegistryLock::~KrRegistryLock()
{
    // Said explicitly: a process that was forked meanwhile holds the file, too.
    struct flock lock = wholeFile(F_UNLCK);
    if (_status == ERROR_SUCCESS)
        static_cast<void>(::fcntl(_file.get(), F_OFD_SETLK, &lock));
}

DWORD KrRegistryLock::acquire() const
{
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + patience;
    struct flock lock = wholeFile(F_WRLCK);
    while (::fcntl(_file.get(), F_OFD_SETLK, &lock) != 0)
    {
        if (errno != EAGAIN && errno != EACCES && errno != EINTR)
            return lastStatus();
        if (Clock::now() >= deadline)
            return ERROR_LOCK_VIOLATION;
        std::this_thread::sleep_for(std::chrono::microseconds(500));
    }
    return ERROR_SUCCESS;
}

// --- keys ---------------------------------------------------------------------------------------

KrDescriptor krOpenKeyFolder(int base, const KrRegistryPath& path)
{
    std::string asSpelt = ".";
    for (const std::string& key : path)
        asSpelt.append("/").append(encodeName(key));
    KrDescriptor folder = openFolder(base, asSpelt.c_str());
    if (folder.isOpen() || path.empty())
        return folder;
    folder = openFolder(base, ".");
    for (auto key = path.begin(); key != path.end() && folder.isOpen(); ++key)
        folder = openFolder(folder.get(), findFolder(folder.get(), *key).c_str());
    return folder;
}

KrDescriptor krMakeKeyFolder(int base, const KrRegistryPath& path, mode_t mode, bool& made)
{
    KrDescriptor folder = openFolder(base, ".");
    for (const std::string& key : path)
    {
        const std::string name = findFolder(folder.get(), key);
        made = ::mkdirat(folder.get(), name.c_str(), folderMode(mode)) == 0;
        if (!made && errno != EEXIST)
            return KrDescriptor();
        folder = openFolder(folder.get(), name.c_str());
    }
    return folder;
}

bool krListKeyFolders(int base, std::vector<std::string>& keys)
{
    keys.clear();
    return visitFolders(base,
                        [&](const char* name)
                        {
                            keys.push_back(decodeName(name));
                            return true;
                        });
}

/// The folder is moved aside first.
DWORD krRemoveKeyFolder(const KrRegistryRoot& root, int base, const KrRegistryPath& path)
{
    const KrDescriptor parent = krOpenKeyFolder(base, {path.begin(), path.end() - 1});
    if (!parent.isOpen())
        return lastStatus();
    if (const DWORD status = krCheckChangeable(parent.get()); status != ERROR_SUCCESS)
        return status;
    const std::string name = findFolder(parent.get(), path.back());
    if (::renameat(parent.get(), name.c_str(), AT_FDCWD, getAside(root).c_str()) != 0)
        return lastStatus();
    clearAside(root);
    return ERROR_SUCCESS;
}

DWORD krCheckChangeable(int folder)
{
    struct stat status = {};
    if (::fstat(folder, &status) != 0 || ::faccessat(folder, ".", W_OK, AT_EACCESS) != 0)
        return lastStatus();
    // The permissions hold for whoever is allowed everything, too.
    return (status.st_mode & 0222U) != 0 ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
}

// --- files --------------------------------------------------------------------------------------

DWORD krReplaceFile(int folder, const char* name, const std::string& text, mode_t mode)
{
    ::unlinkat(folder, newFile, 0); // of a process that was killed
    KrDescriptor file(
        ::openat(folder, newFile, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, mode));
    if (!file.isOpen())
        return lastStatus();
    if (::fchmod(file.get(), mode) == 0 && writeAll(file.get(), text) && ::fsync(file.get()) == 0 &&
        ::renameat(folder, newFile, folder, name) == 0)
        return ERROR_SUCCESS;
    const DWORD status = lastStatus();
    ::unlinkat(folder, newFile, 0);
    return status;
}

KrDescriptor krOpenFile(int folder, const char* name)
{
    return KrDescriptor(::openat(folder, name, O_RDONLY | O_CLOEXEC));
}

bool krReadFile(int file, std::string& text)
{
    struct stat status = {};
    if (::fstat(file, &status) != 0)
        return false;
    text.resize(static_cast<std::size_t>(status.st_size));
    std::size_t size = 0;
    while (size < text.size())
    {
        const ssize_t count =
            ::pread(file, text.data() + size, text.size() - size, static_cast<off_t>(size));
        if (count == 0)
            break;
        if (count > 0)
            size += static_cast<std::size_t>(count);
        else if (errno != EINTR)
            return false;
    }
    text.resize(size);
    return true;
}

std::string krGetPath(int descriptor)
{
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(descriptor), error)
        .string();
}

bool krIsRemoved(int folder)
{
    struct stat status = {};
    return ::fstat(folder, &status) == 0 && status.st_nlink == 0;
}

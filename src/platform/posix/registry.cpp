#include <platform/posix/handle.h>
#include <platform/posix/registryFolder.h>
#include <platform/posix/registryText.h>
#include <platform/posix/sameName.h>
#include <platform/posix/wideText.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <mutex>
#include <new>
#include <utility>

#include <sys/stat.h>

char krUserRoot = 0;
char krMachineRoot = 0;

namespace
{

constexpr char valuesFile[] = "@values";

thread_local std::string detail; // where the last damage was found

/// Does a call's work, which may run out of memory.
template <class Work>
LSTATUS run(Work work) noexcept
{
    try
    {
        return static_cast<LSTATUS>(work());
    }
    catch (const std::bad_alloc&)
    {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
}

DWORD lastStatus()
{
    return krErrorFromErrno(errno);
}

class Key : public KrHandleObject
{
public:
    Key(KrRegistryRoot root, KrDescriptor folder, REGSAM access)
        : _root(std::move(root))
        , _access(access)
        , _folder(std::move(folder))
    {
    }

    const KrRegistryRoot& getRoot() const { return _root; }
    /// Below 0 for a root that has no folder yet.
    int getFolder() const
    {
        const std::lock_guard<std::mutex> guard(_folderMutex);
        if (!_folder.isOpen())
            _folder = _root.open();
        return _folder.get();
    }

    /// Calls `read` with the values.
    template <class Read>
    DWORD readValues(Read read)
    {
        const std::lock_guard<std::mutex> guard(_mutex);
        const DWORD status = load();
        return status == ERROR_SUCCESS ? read(_values) : status;
    }

    /// Has `change` change the values, and writes them if it succeeds.
    template <class Change>
    DWORD changeValues(Change change);

    /// Gives the name of a key as it was when the index 0 was asked for.
    DWORD giveKey(DWORD index, WCHAR* name, DWORD* size);

private:
    DWORD listKeys();
    DWORD load();
    DWORD loadFrom(KrDescriptor file);
    bool isLoaded(const struct stat& status) const;

    const KrRegistryRoot _root;
    const REGSAM _access;
    mutable std::mutex _folderMutex; // for what follows
    mutable KrDescriptor _folder;

    std::mutex _mutex; // for what follows
    // The file that was read stays open: while it is, no other one can have its number.
    KrDescriptor _file;
    struct stat _status = {};
    KrRegistryValues _values;

    std::mutex _listMutex; // for what follows
    std::vector<std::string> _listedKeys;
};

// --- values -------------------------------------------------------------------------------------

/// Brings the values up to date.
DWORD Key::load()
{
    struct stat status = {};
    const int folder = getFolder();
    if (folder >= 0 && ::fstatat(folder, valuesFile, &status, 0) == 0)
        return isLoaded(status) ? ERROR_SUCCESS : loadFrom(krOpenFile(folder, valuesFile));
    if (folder >= 0 && errno != ENOENT)
        return lastStatus();
    _values.clear();
    _file = KrDescriptor();
    return folder >= 0 && krIsRemoved(folder) ? ERROR_KEY_DELETED : ERROR_SUCCESS;
}

/// A file that is replaced is another one; one that somebody has changed has another time.
bool Key::isLoaded(const struct stat& status) const
{
    return _file.isOpen() && status.st_ino == _status.st_ino && status.st_dev == _status.st_dev &&
           status.st_size == _status.st_size &&
           std::memcmp(&status.st_ctim, &_status.st_ctim, sizeof status.st_ctim) == 0;
}

DWORD Key::loadFrom(KrDescriptor file)
{
    _file = KrDescriptor();
    struct stat status = {};
    std::string text;
    KrRegistryValues values;
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0 || !krReadFile(file.get(), text))
        return lastStatus();
    const std::size_t line = krParseRegistry(text, values);
    if (line != 0)
    {
        detail = krGetPath(file.get()) + ", line " + std::to_string(line);
        return ERROR_REGISTRY_CORRUPT;
    }
    _values = std::move(values);
    _status = status;
    _file = std::move(file);
    return ERROR_SUCCESS;
}

template <class Change>
DWORD Key::changeValues(Change change)
{
    if ((_access & KEY_SET_VALUE) == 0)
        return ERROR_ACCESS_DENIED;
    const KrRegistryLock lock(_root);
    if (lock.getStatus() != ERROR_SUCCESS)
        return lock.getStatus();
    const std::lock_guard<std::mutex> guard(_mutex);
    DWORD status = load();
    if (status == ERROR_SUCCESS)
        status = krCheckChangeable(getFolder());
    const bool isWritten = _file.isOpen();
    const mode_t mode = isWritten ? _status.st_mode & 0777U : _root.mode;
    if (status == ERROR_SUCCESS && (mode & 0222U) == 0)
        status = ERROR_ACCESS_DENIED;
    KrRegistryValues values = _values;
    if (status == ERROR_SUCCESS)
        status = change(values);
    const std::string text = krFormatRegistry(values);
    if (status != ERROR_SUCCESS || (isWritten && text == krFormatRegistry(_values)))
        return status;
    return krReplaceFile(getFolder(), valuesFile, text, mode);
}

auto isNamed(const std::string& name)
{
    return [&](const KrRegistryValue& value) { return krIsSameName(value.name, name); };
}

template <class Values>
auto findValue(Values& values, const std::string& name)
{
    return std::find_if(values.begin(), values.end(), isNamed(name));
}

/// Gives data to a caller as the calls do: the size alone, the data, or that there is no room.
DWORD giveData(const std::string& given, BYTE* data, DWORD* size)
{
    if (size == nullptr)
        return data == nullptr ? ERROR_SUCCESS : ERROR_INVALID_PARAMETER;
    const DWORD room = std::exchange(*size, static_cast<DWORD>(given.size()));
    if (data == nullptr)
        return ERROR_SUCCESS;
    if (given.size() > room)
        return ERROR_MORE_DATA;
    std::copy(given.begin(), given.end(), data);
    return ERROR_SUCCESS;
}

/// The same for a name, whose terminator has to find room and is not counted.
DWORD giveName(const std::string& given, WCHAR* name, DWORD* size)
{
    std::u16string wide;
    krWiden(given, wide);
    if (wide.size() >= *size)
        return ERROR_MORE_DATA;
    std::copy_n(wide.c_str(), wide.size() + 1, name);
    *size = static_cast<DWORD>(wide.size());
    return ERROR_SUCCESS;
}

DWORD Key::listKeys()
{
    const int folder = getFolder();
    if (folder >= 0 && krIsRemoved(folder))
        return ERROR_KEY_DELETED;
    return folder < 0 || krListKeyFolders(folder, _listedKeys) ? ERROR_SUCCESS : lastStatus();
}

DWORD Key::giveKey(DWORD index, WCHAR* name, DWORD* size)
{
    const std::lock_guard<std::mutex> guard(_listMutex);
    const DWORD status = index == 0 ? listKeys() : ERROR_SUCCESS;
    if (status != ERROR_SUCCESS)
        return status;
    return index < _listedKeys.size() ? giveName(_listedKeys[index], name, size)
                                      : ERROR_NO_MORE_ITEMS;
}

bool takeName(const WCHAR* wide, std::string& name)
{
    return wide == nullptr || krNarrow(wide, name);
}

// --- keys ---------------------------------------------------------------------------------------

/// The elements of a path; false if one of them is empty or no text.
bool splitPath(const WCHAR* wide, KrRegistryPath& path)
{
    std::string text;
    if (!takeName(wide, text))
        return false;
    for (std::size_t begin = 0; begin < text.size();)
    {
        const std::size_t end = std::min(text.find('\\', begin), text.size());
        path.push_back(text.substr(begin, end - begin));
        begin = end + 1;
        if (path.back().empty() || begin == text.size())
            return false;
    }
    return true;
}

/// A key that paths start from: one that is open, or a root.
struct Base
{
    explicit Base(HKEY handle)
    {
        const bool isMachine = handle == HKEY_LOCAL_MACHINE;
        if (isMachine || handle == HKEY_CURRENT_USER)
        {
            root = KrRegistryRoot::get(isMachine);
            refresh();
            const bool isMissing = folder < 0 && (errno == ENOENT || errno == ENOTDIR);
            status = folder >= 0 || isMissing ? ERROR_SUCCESS : lastStatus();
        }
        else if (const Key* const key = krObject<Key>(handle))
        {
            root = key->getRoot();
            folder = key->getFolder();
            status = ERROR_SUCCESS;
        }
    }

    /// Opens the folder of a root that has been made meanwhile.
    void refresh()
    {
        if (folder >= 0)
            return;
        opened = root.open();
        folder = opened.get();
    }

    KrRegistryRoot root;
    KrDescriptor opened;
    int folder = -1; ///< below 0 for a root that has no folder yet
    DWORD status = ERROR_INVALID_HANDLE;
};

/// Does the work of a call on a path below a key.
template <class Work>
LSTATUS runOnPath(HKEY handle, const WCHAR* name, Work work) noexcept
{
    return run(
        [&]() -> DWORD
        {
            Base base(handle);
            KrRegistryPath path;
            if (base.status != ERROR_SUCCESS)
                return base.status;
            return splitPath(name, path) ? work(base, path) : ERROR_INVALID_NAME;
        });
}

/// The same on a key that is open.
template <class Work>
LSTATUS runOnKey(HKEY handle, Work work) noexcept
{
    return run(
        [&]() -> DWORD
        {
            auto* const key = krObject<Key>(handle);
            return key != nullptr ? work(*key) : ERROR_INVALID_HANDLE;
        });
}

DWORD openKey(const Base& base, KrDescriptor folder, REGSAM access, HKEY* result)
{
    const DWORD status = folder.isOpen() && (access & KEY_SET_VALUE) != 0
                             ? krCheckChangeable(folder.get())
                             : ERROR_SUCCESS;
    if (status != ERROR_SUCCESS)
        return status;
    const HANDLE handle = KrHandleObject::open(new Key(base.root, std::move(folder), access));
    if (handle == INVALID_HANDLE_VALUE)
        return GetLastError();
    *result = handle;
    return ERROR_SUCCESS;
}

DWORD makeKey(Base& base, const KrRegistryPath& path, REGSAM access, HKEY* result,
              DWORD* disposition)
{
    const KrRegistryLock lock(base.root);
    if (lock.getStatus() != ERROR_SUCCESS)
        return lock.getStatus();
    base.refresh();
    bool made = false;
    KrDescriptor folder = krMakeKeyFolder(base.folder, path, base.root.mode, made);
    if (!folder.isOpen())
        return base.folder >= 0 && krIsRemoved(base.folder) ? ERROR_KEY_DELETED : lastStatus();
    if (disposition != nullptr)
        *disposition = made ? REG_CREATED_NEW_KEY : REG_OPENED_EXISTING_KEY;
    return openKey(base, std::move(folder), access, result);
}

} // namespace

const char* krRegistryDetail() noexcept
{
    return detail.c_str();
}

LSTATUS RegOpenKeyExW(HKEY handle, const WCHAR* name, DWORD, REGSAM access, HKEY* result) noexcept
{
    return runOnPath(handle, name,
                     [&](const Base& base, const KrRegistryPath& path) -> DWORD
                     {
                         const bool isEmptyRoot = path.empty() && (access & KEY_SET_VALUE) == 0;
                         if (base.folder < 0)
                             return isEmptyRoot ? openKey(base, KrDescriptor(), access, result)
                                                : ERROR_FILE_NOT_FOUND;
                         KrDescriptor folder = krOpenKeyFolder(base.folder, path);
                         if (!folder.isOpen())
                             return krIsRemoved(base.folder) ? ERROR_KEY_DELETED : lastStatus();
                         return openKey(base, std::move(folder), access, result);
                     });
}

LSTATUS RegCreateKeyExW(HKEY handle, const WCHAR* name, DWORD, WCHAR*, DWORD, REGSAM access,
                        SECURITY_ATTRIBUTES*, HKEY* result, DWORD* disposition) noexcept
{
    const LSTATUS opened = RegOpenKeyExW(handle, name, 0, access, result);
    if (opened == ERROR_SUCCESS && disposition != nullptr)
        *disposition = REG_OPENED_EXISTING_KEY;
    if (opened != ERROR_FILE_NOT_FOUND)
        return opened;
    return runOnPath(handle, name,
                     [&](Base& base, const KrRegistryPath& path)
                     { return makeKey(base, path, access, result, disposition); });
}

LSTATUS RegCloseKey(HKEY handle) noexcept
{
    if (handle == HKEY_CURRENT_USER || handle == HKEY_LOCAL_MACHINE)
        return ERROR_SUCCESS;
    if (krObject<Key>(handle) == nullptr)
        return ERROR_INVALID_HANDLE;
    CloseHandle(handle);
    return ERROR_SUCCESS;
}

LSTATUS RegDeleteTreeW(HKEY handle, const WCHAR* name) noexcept
{
    return runOnPath(
        handle, name,
        [](const Base& base, const KrRegistryPath& path) -> DWORD
        {
            if (path.empty())
                return ERROR_INVALID_PARAMETER;
            if (!krOpenKeyFolder(base.folder, path).isOpen()) // no lock where nothing is to be done
                return base.folder < 0 ? ERROR_FILE_NOT_FOUND : lastStatus();
            const KrRegistryLock lock(base.root);
            return lock.getStatus() == ERROR_SUCCESS
                       ? krRemoveKeyFolder(base.root, base.folder, path)
                       : lock.getStatus();
        });
}

LSTATUS RegEnumKeyExW(HKEY handle, DWORD index, WCHAR* name, DWORD* size, DWORD*, WCHAR*, DWORD*,
                      FILETIME*) noexcept
{
    return runOnKey(handle, [&](Key& key) { return key.giveKey(index, name, size); });
}

LSTATUS RegEnumValueW(HKEY handle, DWORD index, WCHAR* name, DWORD* size, DWORD*, DWORD* type,
                      BYTE* data, DWORD* dataSize) noexcept
{
    const auto give = [&](const KrRegistryValues& values) -> DWORD
    {
        if (index >= values.size())
            return ERROR_NO_MORE_ITEMS;
        if (type != nullptr)
            *type = values[index].type;
        const DWORD status = giveName(values[index].name, name, size);
        return status == ERROR_SUCCESS ? giveData(values[index].data, data, dataSize) : status;
    };
    return runOnKey(handle, [&](Key& key) { return key.readValues(give); });
}

LSTATUS RegQueryValueExW(HKEY handle, const WCHAR* name, DWORD*, DWORD* type, BYTE* data,
                         DWORD* size) noexcept
{
    return runOnKey(handle,
                    [&](Key& key) -> DWORD
                    {
                        std::string text;
                        if (!takeName(name, text))
                            return ERROR_FILE_NOT_FOUND;
                        return key.readValues(
                            [&](const KrRegistryValues& values) -> DWORD
                            {
                                const auto value = findValue(values, text);
                                if (value == values.end())
                                    return ERROR_FILE_NOT_FOUND;
                                if (type != nullptr)
                                    *type = value->type;
                                return giveData(value->data, data, size);
                            });
                    });
}

LSTATUS RegSetValueExW(HKEY handle, const WCHAR* name, DWORD, DWORD type, const BYTE* data,
                       DWORD size) noexcept
{
    return runOnKey(handle,
                    [&](Key& key) -> DWORD
                    {
                        std::string text;
                        if (!takeName(name, text))
                            return ERROR_INVALID_NAME;
                        return key.changeValues(
                            [&](KrRegistryValues& values) -> DWORD
                            {
                                auto value = findValue(values, text);
                                if (value == values.end())
                                    value = values.insert(value, KrRegistryValue{text, type, {}});
                                value->type = type;
                                value->data.assign(reinterpret_cast<const char*>(data), size);
                                return ERROR_SUCCESS;
                            });
                    });
}

LSTATUS RegDeleteValueW(HKEY handle, const WCHAR* name) noexcept
{
    return runOnKey(handle,
                    [&](Key& key) -> DWORD
                    {
                        std::string text;
                        if (!takeName(name, text))
                            return ERROR_FILE_NOT_FOUND;
                        return key.changeValues(
                            [&](KrRegistryValues& values) -> DWORD
                            {
                                // A file that was edited by hand may hold a name twice.
                                const auto kept =
                                    std::remove_if(values.begin(), values.end(), isNamed(text));
                                const bool isMissing = kept == values.end();
                                values.erase(kept, values.end());
                                return isMissing ? ERROR_FILE_NOT_FOUND : ERROR_SUCCESS;
                            });
                    });
}

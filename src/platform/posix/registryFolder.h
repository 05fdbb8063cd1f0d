#pragma once

/// @file
/// Where the registry's keys are kept on a POSIX host: a key is a folder, its values are a file in
/// it, its keys are folders in it.
///
/// The user's root is `krbase/registry` in the folder that XDG_CONFIG_HOME names, or in `.config`
/// of the folder that HOME names; the machine's is the same in the first folder of XDG_CONFIG_DIRS,
/// or in /etc/xdg. Writers hold a lock on a root, which ends with their process; files are replaced
/// in one step, so that readers need no lock.

#include <platform/platform.h>

#include <chrono>
#include <string>
#include <vector>

#include <sys/types.h>

/// Owns a descriptor.
class KrDescriptor
{
public:
    explicit KrDescriptor(int descriptor = -1) noexcept
        : _descriptor(descriptor)
    {
    }
    KrDescriptor(KrDescriptor&& other) noexcept;
    KrDescriptor& operator=(KrDescriptor&& other) noexcept;
    KrDescriptor(const KrDescriptor&) = delete;
    KrDescriptor& operator=(const KrDescriptor&) = delete;
    ~KrDescriptor();

    int get() const noexcept { return _descriptor; }
    bool isOpen() const noexcept { return _descriptor >= 0; }

private:
    int _descriptor;
};

struct KrRegistryRoot
{
    std::string folder; ///< empty if the environment does not tell
    mode_t mode;        ///< of files; that of folders follows

    static KrRegistryRoot get(bool isMachine);

    KrDescriptor open() const;
};

/// Holds the lock of a root, whose folder it makes where it is missing.
class KrRegistryLock
{
public:
    /// For how long a lock that others hold is waited for.
    static std::chrono::milliseconds patience;

    explicit KrRegistryLock(const KrRegistryRoot& root);
    KrRegistryLock(const KrRegistryLock&) = delete;
    KrRegistryLock& operator=(const KrRegistryLock&) = delete;
    ~KrRegistryLock();

    /// ERROR_SUCCESS if the lock is held.
    DWORD getStatus() const noexcept { return _status; }

private:
    DWORD acquire() const;

    KrDescriptor _file;
    DWORD _status;
};

/// The elements of a key's path, in UTF-8.
using KrRegistryPath = std::vector<std::string>;

/// The folder of a key below another, whatever the case of its names; not open, with `errno` set,
/// if there is none.
KrDescriptor krOpenKeyFolder(int base, const KrRegistryPath& path);

/// The same; makes the folders that are missing. Under the lock.
/// @param made whether the last one was
KrDescriptor krMakeKeyFolder(int base, const KrRegistryPath& path, mode_t mode, bool& made);

/// Lists the names of the keys in a folder; false with `errno` set.
bool krListKeyFolders(int base, std::vector<std::string>& keys);

/// Removes a folder and all below in one step. Under the lock.
DWORD krRemoveKeyFolder(const KrRegistryRoot& root, int base, const KrRegistryPath& path);

/// Whether the folder's permissions and its file system let it be changed; ERROR_SUCCESS if so.
DWORD krCheckChangeable(int folder);

/// Puts a text in the place of a file's in one step, or leaves the file as it is.
/// @param mode the permissions it then has, whatever the process leaves out of those of new files
DWORD krReplaceFile(int folder, const char* name, const std::string& text, mode_t mode);

/// Opens a file of a folder for reading, and reads it.
KrDescriptor krOpenFile(int folder, const char* name);
bool krReadFile(int file, std::string& text);

/// Where a descriptor leads to.
std::string krGetPath(int descriptor);

/// A folder that has been removed while it is open.
bool krIsRemoved(int folder);

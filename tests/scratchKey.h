#pragma once

/// @file
/// A registry for a test.

#include "fileFolder.h"

#include <base/osEnv.h>
#include <base/osRegistryKey.h>

#include <random>
#include <string>

/// A key of the user's that is removed at the end. Where the registry is kept in files, both roots
/// lie in a folder of their own, also for the processes that the test starts.
class ScratchKey
{
public:
    ScratchKey()
        : _path("Software\\krbase-test-" + std::to_string(std::random_device()()))
    {
        Kr::OsEnv::putVariable(("XDG_CONFIG_HOME=" + (_folder / "user").string()).c_str());
        Kr::OsEnv::putVariable(("XDG_CONFIG_DIRS=" + (_folder / "machine").string()).c_str());
    }
    ScratchKey(const ScratchKey&) = delete;
    ScratchKey& operator=(const ScratchKey&) = delete;
    ~ScratchKey() { Kr::OsRegistryKey::removeTree(Kr::OsRegistryKey::Root::User, getPath()); }

    const char* getPath() const { return _path.c_str(); }
    const FileFolder& getFolder() const { return _folder; }

    Kr::OsRegistryKey open(Kr::OsRegistryKey::Mode mode = Kr::OsRegistryKey::Mode::Create) const
    {
        return {Kr::OsRegistryKey::Root::User, getPath(), mode};
    }

private:
    const FileFolder _folder;
    const std::string _path;
};

// The registry where it is the system's: rights that are missing. The machine's part of it is, for
// all tests of the program, one of their own.

#include "raised.h"
#include "scratchKey.h"
#include "variablesFixture.h"

#include <base/inVariable.h>
#include <base/osSettingsStore.h>

#include <gmock/gmock.h>

#include <windows.h>

#include <sddl.h>

namespace
{

using Kr::OsRegistryKey;
using Ex = Kr::OsRegistryKeyEx;
using Mode = OsRegistryKey::Mode;
using testing::HasSubstr;

class OwnMachine : public testing::Environment
{
public:
    void SetUp() override
    {
        HKEY machine = nullptr;
        RegCreateKeyExA(HKEY_CURRENT_USER, _path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                        &machine, nullptr);
        EXPECT_EQ(RegOverridePredefKey(HKEY_LOCAL_MACHINE, machine), ERROR_SUCCESS);
        RegCloseKey(machine);
    }

    void TearDown() override
    {
        RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
        OsRegistryKey::removeTree(OsRegistryKey::Root::User, _path.c_str());
    }

private:
    const std::string _path = "Software\\krbase-machine-" + std::to_string(GetCurrentProcessId());
};

const testing::Environment* const machine = testing::AddGlobalTestEnvironment(new OwnMachine);

/// Gives everybody those rights to a key, and all of them again at the end.
class Rights
{
public:
    Rights(const ScratchKey& key, const char* rights)
    {
        RegOpenKeyExA(HKEY_CURRENT_USER, key.getPath(), 0, WRITE_DAC, &_key);
        set(rights);
    }
    Rights(const Rights&) = delete;
    Rights& operator=(const Rights&) = delete;
    ~Rights()
    {
        set("D:(A;;KA;;;WD)");
        RegCloseKey(_key);
    }

private:
    void set(const char* rights)
    {
        PSECURITY_DESCRIPTOR descriptor = nullptr;
        ConvertStringSecurityDescriptorToSecurityDescriptorA(rights, SDDL_REVISION_1, &descriptor,
                                                             nullptr);
        EXPECT_EQ(RegSetKeySecurity(_key, DACL_SECURITY_INFORMATION, descriptor), ERROR_SUCCESS);
        LocalFree(descriptor);
    }

    HKEY _key = nullptr;
};

TEST(RegistryRights, AreNeededForWhatIsDone)
{
    const ScratchKey scratch;
    scratch.open().setText("t.title", "old");
    const std::string path = scratch.open().getPath();
    const Kr::OsSettingsStore store(scratch.getPath());
    Package package;
    Kr::InVariable<std::string> title(package, "t.title", "untitled", "");
    package.start();
    {
        const Rights reading(scratch, "D:P(A;;KR;;;WD)");
        EXPECT_EQ(scratch.open(Mode::Read).getText("t.title"), "old");
        EXPECT_THAT(reasonOf<Ex::ExRefused>([&] { scratch.open(Mode::Write); }),
                    HasSubstr("Cannot open the key '" + path + "': "));
        EXPECT_THAT(reasonOf<Ex::ExRefused>([&] { scratch.open(Mode::Create); }),
                    HasSubstr("Cannot create the key '" + path + "': "));
        EXPECT_THROW(title.setStored("new"), Ex::ExRefused);
    }
    {
        const Rights none(scratch, "D:P");
        testing::internal::CaptureStdout();
        const Kr::OsSettingsStore blind(scratch.getPath());
        Kr::InVariable<std::string> other(package, "t.other", "untitled", "");
        package.start();
        EXPECT_EQ(title.getValue(), "untitled");
        EXPECT_THAT(testing::internal::GetCapturedStdout(), HasSubstr("are skipped: Cannot open "));
        EXPECT_THAT(reasonOf<Ex::ExRefused>([&] { scratch.open(Mode::Read); }),
                    HasSubstr("Cannot open the key '" + path + "': "));
    }
    EXPECT_EQ(scratch.open().getText("t.title"), "old");
}

} // namespace

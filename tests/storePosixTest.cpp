// The registry where it is kept in files: damage, refusals of the host, processes that end in the
// middle of a change.

#include "raised.h"
#include "scratchKey.h"
#include "variablesFixture.h"

#include <base/inVariable.h>
#include <base/osSettingsStore.h>
#include <platform/posix/registryFolder.h>
#include <platform/posix/registryText.h>

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

namespace fs = std::filesystem;
using Kr::OsRegistryKey;
using Ex = Kr::OsRegistryKeyEx;
using Mode = OsRegistryKey::Mode;
using Root = OsRegistryKey::Root;

/// The reason of a refusal, behind the names in it.
template <class Action>
std::string refusalOf(Action action)
{
    const std::string reason = reasonOf<Ex::ExRefused>(action);
    return reason.substr(reason.find("': ") + 3);
}

/// The folder of a scratch key's own root.
fs::path rootOf(const ScratchKey& scratch)
{
    return scratch.getFolder() / "user/krbase/registry";
}

fs::path folderOf(const ScratchKey& scratch)
{
    return rootOf(scratch) / "Software" / std::string(scratch.getPath()).substr(9);
}

void write(const fs::path& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary) << text;
}

const std::string head = "KRbase registry 1\n";

TEST(RegistryFiles, AreTextsThatPeopleCanRead)
{
    const ScratchKey scratch;
    OsRegistryKey key = scratch.open();
    key.setText("Title", "say \"a\\b\"\n\x1F");
    key.setTextList("Recent", {"a", ""});
    key.setInteger32("Width", -1);
    key.setInteger64("Seed", 1LL << 62);
    key.setBytes("Layout", {0, 255});
    const std::string text = head + "\"Title\" text \"say \\\"a\\\\b\\\"\\n\\x1f\"\n"
                                    "\"Recent\" texts \"a\" \"\"\n"
                                    "\"Width\" int32 -1\n"
                                    "\"Seed\" int64 4611686018427387904\n"
                                    "\"Layout\" bytes 00ff\n";
    EXPECT_EQ(FileFolder::read(folderOf(scratch) / "@values"), text + "end\n");
    // What the calls can store besides, and this library does not, is kept as it is.
    const std::string raw = "\"a\" raw 1 4100\n\"b\" raw 4 00\n\"c\" raw 99 0102\n";
    write(folderOf(scratch) / "@values", text + raw + "end\n");
    EXPECT_EQ(key.getType("b"), OsRegistryKey::ValueType::Other);
    EXPECT_EQ(key.getText("A"), "A");
    key.setInteger32("width", 7);
    EXPECT_EQ(key.getInteger32("Width"), 7);
    const std::string rewritten = FileFolder::read(folderOf(scratch) / "@values");
    EXPECT_EQ(rewritten.substr(rewritten.find("\"a\" raw")), raw + "end\n");
    // So are the permissions of a file that several people write.
    fs::permissions(folderOf(scratch) / "@values", fs::perms(0666));
    key.setInteger32("width", 8);
    EXPECT_EQ(fs::status(folderOf(scratch) / "@values").permissions(), fs::perms(0666));
}

TEST(RegistryFiles, LeavesWhatIsDamagedAlone)
{
    const struct
    {
        std::string text;
        int line;
    } table[] = {
        {"", 1},
        {"KRbase registry 2\nend\n", 1},
        {head, 2},
        {head + "end", 2},
        {head + "\"a\" int32 1\n", 3},
        {head + "\"a\" int32 1\nend\nend\n", 3},
        {head + "\"a\" int32 2147483648\nend\n", 2},
        {head + "\"a\" int32 1 \nend\n", 2},
        {head + "\"a\" int32\nend\n", 2},
        {head + "\"a\" text \"b\" \"c\"\nend\n", 2},
        {head + "\"a\" text \"\xFF\"\nend\n", 2},
        {head + "\"a\" text \"\\q\"\nend\n", 2},
        {head + "\"a\" text \"b\nend\n", 2},
        {head + "\"a\" bytes 0\nend\n", 2},
        {head + "\"a\" bytes 0g\nend\n", 2},
        {head + "\"a\" raw 1\nend\n", 2},
        {head + std::string(100, '\0'), 2},
    };
    for (const auto& row : table)
    {
        SCOPED_TRACE(row.text);
        const ScratchKey scratch;
        OsRegistryKey key = scratch.open();
        const fs::path path = folderOf(scratch) / "@values";
        write(path, row.text);
        const std::string reason = "The registry is corrupted. (" + path.string() + ", line " +
                                   std::to_string(row.line) + ")";
        EXPECT_EQ(refusalOf([&] { key.getInteger32("a", 0); }), reason);
        EXPECT_EQ(refusalOf([&] { key.setInteger32("a", 0); }), reason);
        EXPECT_EQ(FileFolder::read(path), row.text);
        EXPECT_TRUE(OsRegistryKey::removeTree(Root::User, scratch.getPath()));
        scratch.open().setInteger32("a", 1);
    }
}

TEST(RegistryFiles, KeepsTheOldWhereTheHostRefuses)
{
    std::signal(SIGXFSZ, SIG_IGN);
    const ScratchKey scratch;
    OsRegistryKey key = scratch.open();
    key.setText("v", "old");
    const auto refusal = [&]
    { return refusalOf([&] { key.setText("v", std::string(999, 'n')); }); };
    const fs::path folder = folderOf(scratch);

    rlimit unlimited = {};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &unlimited), 0);
    rlimit limit = unlimited;
    limit.rlim_cur = 500;
    ::setrlimit(RLIMIT_FSIZE, &limit);
    const std::string onFullDisk = refusal();
    ::setrlimit(RLIMIT_FSIZE, &unlimited);
    EXPECT_EQ(onFullDisk, "There is not enough space on the disk.");
    EXPECT_FALSE(fs::exists(folder / "@new"));

    for (const fs::path& path : {folder / "@values", folder})
    {
        const fs::perms before = fs::status(path).permissions();
        constexpr fs::perms writing =
            fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
        fs::permissions(path, writing, fs::perm_options::remove);
        EXPECT_EQ(refusal(), "Access is denied.");
        fs::permissions(path, before);
    }
    EXPECT_EQ(key.getText("v"), "old");
    key.setText("v", "new");
    EXPECT_EQ(key.getText("v"), "new");

    Kr::OsEnv::putVariable(("XDG_CONFIG_HOME=/" + std::string(300, 'x')).c_str());
    EXPECT_EQ(refusalOf([&] { OsRegistryKey::exists(Root::User, scratch.getPath()); }),
              "The filename or extension is too long.");
    Kr::OsEnv::putVariable("XDG_CONFIG_HOME=/dev/null");
    EXPECT_EQ(refusalOf([&] { scratch.open(); }), "The system cannot find the path specified.");
    Kr::OsEnv::putVariable(("XDG_CONFIG_HOME=" + (scratch.getFolder() / "user").string()).c_str());
}

TEST(RegistryFiles, DoesNotWaitForeverForOthers)
{
    const ScratchKey scratch;
    OsRegistryKey key = scratch.open();
    const auto patience = std::exchange(KrRegistryLock::patience, std::chrono::milliseconds(20));
    {
        const KrRegistryLock lock(KrRegistryRoot::get(false));
        ASSERT_EQ(lock.getStatus(), ERROR_SUCCESS);
        EXPECT_EQ(refusalOf([&] { key.setInteger32("v", 1); }),
                  "The process cannot access the file because another process has locked a "
                  "portion of the file.");
        EXPECT_EQ(key.getInteger32("v", 0), 0); // readers do not wait
    }
    KrRegistryLock::patience = patience;
    key.setInteger32("v", 1);
}

TEST(RegistryFiles, SurvivesProcessesThatAreKilled)
{
    const ScratchKey scratch;
    OsRegistryKey key = scratch.open();
    key.setText("v", "a");
    // As a process leaves it that is killed while it removes the key.
    OsRegistryKey aside(key, "aside", Mode::Create);
    fs::rename(folderOf(scratch) / "aside", rootOf(scratch) / "@removed");
    EXPECT_EQ(refusalOf([&] { aside.setInteger32("v", 1); }),
              "Illegal operation attempted on a registry key that has been marked for deletion.");
    for (int i = 0; i < 20; ++i)
    {
        const pid_t child = ::fork();
        for (char c = 'a'; child == 0; c = c == 'z' ? 'a' : static_cast<char>(c + 1))
        {
            key.setText("v", std::string(2000, c));
            OsRegistryKey(key, "sub\\sub", Mode::Create).setInteger32("w", 1);
            key.removeKey("sub");
        }
        ::usleep(static_cast<useconds_t>(700 * i + 1));
        ::kill(child, SIGKILL);
        ASSERT_EQ(::waitpid(child, nullptr, 0), child);
        const std::string found = key.getText("v");
        EXPECT_EQ(found, std::string(found.size(), found.front()));
        OsRegistryKey(key, "sub\\sub", Mode::Create).setInteger32("w", i);
        EXPECT_TRUE(key.removeKey("sub"));
    }
    EXPECT_FALSE(fs::exists(rootOf(scratch) / "@removed"));
}

TEST(RegistryFiles, LieWhereTheEnvironmentSays)
{
    const ScratchKey scratch;
    EXPECT_TRUE(OsRegistryKey(Root::User, "").listKeys().empty()); // and makes nothing
    EXPECT_FALSE(fs::exists(scratch.getFolder() / "user"));
    const OsRegistryKey root(Root::User, "");
    scratch.open().setInteger32("v", 1);
    EXPECT_EQ(root.listKeys(), Kr::Vector<std::string>{"Software"});
    EXPECT_EQ(fs::status(folderOf(scratch) / "@values").permissions(),
              fs::perms::owner_read | fs::perms::owner_write);

    const std::string home = std::getenv("HOME") != nullptr ? std::getenv("HOME") : "";
    Kr::OsEnv::putVariable("XDG_CONFIG_HOME=relative/is/none");
    Kr::OsEnv::putVariable(("HOME=" + (scratch.getFolder() / "home").string()).c_str());
    EXPECT_FALSE(OsRegistryKey::exists(Root::User, scratch.getPath()));
    OsRegistryKey(Root::User, "", Mode::Create).setInteger32("v", 1);
    EXPECT_TRUE(fs::exists(scratch.getFolder() / "home/.config/krbase/registry/@values"));
    Kr::OsEnv::putVariable("HOME=");
    EXPECT_EQ(refusalOf([&] { scratch.open(); }), "The system cannot find the path specified.");
    Kr::OsEnv::putVariable(("HOME=" + home).c_str());
}

TEST(SettingsStore, SkipsAKeyThatIsDamaged)
{
    const ScratchKey scratch;
    OsRegistryKey(Root::Machine, scratch.getPath(), Mode::Create).setInteger64("t.samples", 8);
    scratch.open().setText("t.samples", "3");
    write(folderOf(scratch) / "@values", "damaged");
    const Kr::OsSettingsStore store(scratch.getPath());
    Package package;
    Kr::InVariable<std::int32_t> samples(package, "t.samples", 4, "");
    testing::internal::CaptureStdout();
    package.start();
    EXPECT_EQ(samples.getValue(), 8);
    const std::string path = (folderOf(scratch) / "@values").string();
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "The settings in the key 'HKEY_CURRENT_USER\\" + std::string(scratch.getPath()) +
                  "' are skipped: Cannot read 'HKEY_CURRENT_USER\\" + scratch.getPath() +
                  "\\t.samples': The registry is corrupted. (" + path + ", line 1)\n");
    EXPECT_THROW(samples.setStored(5), Ex::ExRefused);
}

} // namespace

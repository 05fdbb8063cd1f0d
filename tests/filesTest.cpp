// Paths, files, readers and writers, directories and dates.

#include "fileFolder.h"
#include "handleCount.h"
#include "raised.h"
#include "systemCode.h"

#include <base/osDateEx.h>
#include <base/osDateUtil.h>
#include <base/osDir.h>
#include <base/osDirWalker.h>
#include <base/osEnv.h>
#include <base/osFile.h>
#include <base/osFileEx.h>
#include <base/osFileReader.h>
#include <base/osFileWriter.h>
#include <base/osSafeWriter.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <limits>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <unordered_set>

namespace
{

namespace fs = std::filesystem;
using Kr::OsDateTypes;
using Kr::OsDateUtil;
using Kr::OsDir;
using Kr::OsDirEntry;
using Kr::OsDirFilter;
using Kr::OsDirWalker;
using Kr::OsFile;
using Kr::OsFileEx;
using Kr::OsFilePath;
using Kr::OsFileReader;
using Kr::OsFileTypes;
using Kr::OsFileWriter;
using Kr::OsSafeWriter;

const OsFileTypes::Permissions permissions(3, 3, 0);

constexpr unsigned long notFound = 2;
constexpr unsigned long pathNotFound = 3;
constexpr unsigned long accessDenied = 5;
constexpr unsigned long sharingViolation = 32;
constexpr unsigned long fileExists = 80;
constexpr unsigned long invalidName = 123;
constexpr unsigned long notEmpty = 145;
constexpr unsigned long alreadyExists = 183;

template <class Exception, class Action>
bool raises(Action action)
{
    return reasonOf<Exception>(action) != "nothing raised";
}

// Paths

TEST(FilePath, JoinsElementsAndPathsByTheirRules)
{
    const std::string separator = "Separator not allowed in path elements.";
    const std::string absolute = "Attempt to concatenate absolute path.";
    struct
    {
        const char* left;
        const char* right;
        std::string byElement; ///< or why not
        std::string byPath;
    } const cases[] = {
        {"", "a", "a", "a"},
        {"a", "b", "a\\b", "a\\b"},
        {"a\\", "b", "a\\b", "a\\b"},
        {"a", "", "a\\", "a\\"},
        {"a", "\\b", separator, "a\\\\b"},
        {"a", "b\\c", separator, "a\\b\\c"},
        {"a", "b/c", "a\\b/c", "a\\b/c"},
        {"a", "D:x", "a\\D:x", absolute},
        {"a", "C:\\x", separator, absolute},
        {"a", "\\\\s\\x", separator, absolute},
    };
    const auto check = [](const OsFilePath& left, const auto& right, const std::string& expected)
    {
        OsFilePath appended(left);
        OsFilePath sum;
        const std::string why =
            reasonOf<OsFileEx>([&] { appended += right; }, "src/base/osFilePath");
        EXPECT_EQ(reasonOf<OsFileEx>([&] { sum = left + right; }, "src/base/osFilePath"), why);
        const bool isJoined = why == "nothing raised";
        EXPECT_EQ(isJoined ? sum.getString() : why, expected);
        EXPECT_EQ(appended, isJoined ? sum : left);
    };
    for (const auto& c : cases)
    {
        SCOPED_TRACE(std::string(c.left) + " + " + c.right);
        check(c.left, c.right, c.byElement);
        check(c.left, OsFilePath(c.right), c.byPath);
    }
    EXPECT_TRUE(raises<OsFileEx::ExSeparatorNotAllowed>([] { OsFilePath("a") + "\\"; }));
    EXPECT_TRUE(raises<OsFileEx::ExIllegalPathConcat>([] { OsFilePath("a") + OsFilePath("C:x"); }));
    OsFilePath itself("a");
    EXPECT_STREQ((itself += itself).getChars(), "a\\a");
}

TEST(FilePath, TellsAbsoluteFromRelative)
{
    for (const char* path : {"C:x", "C:\\x", "\\\\srv\\share", "1:x", "\\\\?"})
        EXPECT_TRUE(OsFilePath(path).isAbsolute()) << path;
    for (const char* path : {"", "C:", "\\", "ab", "\\dir", "/dir", "//srv/share", "a\\b", "\\\\"})
        EXPECT_TRUE(OsFilePath(path).isRelative()) << path;
}

TEST(FilePath, NamesTheLastElementAndWhatIsBeforeIt)
{
    struct
    {
        const char* path;
        const char* baseName;
        const char* directory;
        const char* extension;
    } const cases[] = {
        {"C:\\a\\b", "b", "C:\\a", ""},
        {"C:\\a\\", "", "C:\\a", ""},
        {"C:\\a", "a", "C:", ""},
        {"C:\\", "", "C:", ""},
        {"C:/a/file.txt", "file.txt", "C:\\a", "txt"},
        {"C:\\file.", "file", "C:", ""},
        {"C:\\.rc", ".rc", "C:", "rc"},
        {"C:\\x.y.z", "x.y.z", "C:", "z"},
        {"C:\\dir.d\\file", "file", "C:\\dir.d", ""},
        {"\\\\srv\\share\\a\\b", "b", "\\\\srv\\share\\a", ""},
    };
    for (const auto& c : cases)
    {
        const OsFilePath path(c.path);
        EXPECT_STREQ(path.getBaseName().getChars(), c.baseName) << c.path;
        EXPECT_STREQ(path.getDirectoryName().getChars(), c.directory) << c.path;
        EXPECT_STREQ(Kr::ArrayPtr<char>(path.getExtension()).get(), c.extension) << c.path;
        EXPECT_STREQ(path.getChars(), c.path);
    }
    const OsFilePath here = OsFilePath(".").getFullPath();
    EXPECT_EQ(OsFilePath(".").getDirectoryName(), here);
    EXPECT_EQ(OsFilePath("..").getDirectoryName(), OsFilePath("..").getFullPath());
    EXPECT_EQ(OsFilePath("a").getDirectoryName(), here);
    for (const std::size_t length : {300U, 1023U, 1024U, 5000U})
    {
        const std::string name(length, 'n');
        EXPECT_EQ(OsFilePath("C:\\d\\" + name).getBaseName(), name);
        EXPECT_STREQ(OsFilePath("C:\\d\\" + name).getDirectoryName().getChars(), "C:\\d");
    }
    EXPECT_NE(codeOf([] { OsFilePath().getBaseName(); }), 0U);
}

TEST(FilePath, KeepsItsTextAndRefusesNull)
{
    EXPECT_STREQ(OsFilePath().getChars(), "");
    EXPECT_STREQ(OsFilePath(static_cast<const char*>(nullptr)).getChars(), "");
    const char* const odd = "a//b\\\\..\\./c\\";
    OsFilePath path(odd);
    EXPECT_STREQ(path.getChars(), odd);
    path.set(path.getChars() + 3); // part of itself
    EXPECT_STREQ(path.getChars(), odd + 3);
    OsFilePath moved(std::move(path));
    EXPECT_STREQ(moved.getChars(), odd + 3);
    EXPECT_TRUE(path.isEmpty()); // NOLINT: that is what is tested
    EXPECT_STREQ((path + "a").getChars(), "a");
    const char* const none = nullptr;
    const auto refuses = [](const char* expression, auto action)
    {
        EXPECT_EQ(reasonOf<Kr::ExInternalError>(action, "src/base/osFilePath"),
                  "Assertion '" + std::string(expression) + "' failed.");
    };
    refuses("path != 0", [&] { path.set(none); });
    refuses("path != 0", [&] { path = none; });
    refuses("path != 0", [&] { path += none; });
    refuses("path != 0", [&] { path + none; });
    refuses("lhs != 0 && rhs != 0", [&] { OsFilePath::compare("", none); });
    EXPECT_LT(OsFilePath::compare("ABC", "abc"), 0);
    EXPECT_EQ(OsFilePath::compare("abc", "abc"), 0);
}

TEST(FilePath, MeetsTheStandardLibrarysTypes)
{
    std::ostringstream stream;
    stream << OsFilePath(std::string_view("a\\bc", 3));
    EXPECT_EQ(stream.str(), "a\\b");
    const std::unordered_set<OsFilePath> set{"a", std::string("b"), "a"};
    EXPECT_EQ(set.size(), 2U);
    EXPECT_LT(OsFilePath("a"), OsFilePath("b"));
    EXPECT_EQ(OsFilePath("x").getString() + std::string(OsFilePath("y").getView()), "xy");
    EXPECT_EQ(reasonOf<OsFileEx::ExInvalidPath>([] { OsFilePath(std::string("a\0b", 3)); }),
              "Invalid path: 'a'.");

    const fs::path here = fs::current_path();
    EXPECT_EQ(OsFilePath(here), OsFilePath(".").getFullPath());
    EXPECT_EQ(OsFilePath(here).getStdPath(), here);
    EXPECT_TRUE(OsFilePath(here).isAbsolute());
    EXPECT_STREQ(OsFilePath(fs::path("a/b")).getChars(), "a\\b");
    EXPECT_EQ(OsFilePath("a\\b").getStdPath(), fs::path("a/b"));
    const std::string uri = OsFilePath("C:\\a b\\\xC3\xA4#.txt").getUri();
    EXPECT_EQ(uri.substr(0, 8), "file:///");
    EXPECT_NE(uri.find("/a%20b/%C3%"), std::string::npos) << uri;
    EXPECT_NE(uri.find("%23.txt"), std::string::npos) << uri;
}

TEST(FilePath, KnowsTheWellKnownDirectories)
{
    const OsFilePath here = OsFilePath(".").getFullPath();
    EXPECT_EQ(OsFilePath::getRootDir(), here.getString().substr(0, 3));
    const OsFilePath temp = OsFilePath::getTempDir();
    EXPECT_TRUE(temp.isAbsolute());
    EXPECT_EQ(temp.getString().back(), '\\');
    EXPECT_TRUE(OsDir(temp).exists());

    const char* const home = std::getenv("HOME");
    const std::string saved = home != nullptr ? home : "";
    Kr::OsEnv::putVariable("HOME=c:/users/x");
    EXPECT_STREQ(OsFilePath::getHomeDir().getChars(), "c:\\users\\x");
    Kr::OsEnv::putVariable(("HOME=" + std::string(5000, '/')).c_str());
    EXPECT_EQ(OsFilePath::getHomeDir().getString(), std::string(5000, '\\'));
    Kr::OsEnv::putVariable("HOME=");
    EXPECT_EQ(reasonOf<OsFileEx::ExHomeNotDefined>([] { OsFilePath::getHomeDir(); },
                                                   "src/base/osFilePathWindows"),
              "Cannot get home directory from the environment.");
    Kr::OsEnv::putVariable(("HOME=" + saved).c_str());
}

TEST(FileEx, CutsThePathInItsReason)
{
    const std::string path(300, 'x');
    const auto cut = "'" + path.substr(0, 256) + "'";
    EXPECT_EQ(OsFileEx::ExInvalidPath("f", 1, path.c_str()).what(), "Invalid path: " + cut + ".");
    EXPECT_EQ(OsFileEx::ExPathNotWritable("f", 1, path.c_str()).what(),
              "Invalid path: " + cut + ".");
    EXPECT_EQ(std::string(OsFileEx::ExNoRemoteUnbuffered("f", 1, "X:\\").what()),
              "Unbuffered IO is impossible on a remote drive: 'X:\\' is a remote path.");
}

// Files

class Files : public testing::Test
{
protected:
    Files()
        : _handles(HandleCount::get())
    {
    }

    void TearDown() override { EXPECT_EQ(HandleCount::get(), _handles) << "left open"; }

    /// A file with that content.
    OsFilePath put(const char* name, const std::string& content)
    {
        std::ofstream(_folder / name, std::ios::binary) << content;
        return at(name);
    }
    std::string get(const char* name) const { return FileFolder::read(_folder / name); }
    OsFilePath at(const char* name) const
    {
        return OsFilePath(_folder.getPath()) + OsFilePath(name);
    }

    const FileFolder _folder;

private:
    const unsigned _handles;
};

TEST_F(Files, AreDescribed)
{
    OsFile file(put("a.txt", "12345"));
    EXPECT_TRUE(file.exists() && file.isFile() && !file.isDirectory() && !file.isSymLink());
    EXPECT_EQ(file.getType(), OsFileTypes::RegularFile);
    EXPECT_EQ(file.getSize(), 5U);
    EXPECT_EQ(file.getFullSize(), 5U);
    EXPECT_EQ(file.getAccess(), 3);
    EXPECT_STREQ(Kr::ArrayPtr<char>(file.getOwner()).get(), "");
    const Kr::ObjPtr<OsFileTypes::UnbufferedInfo> info(file.getUnbufferedInfo());
    EXPECT_GE(info->getAlignment(), 512U);
    EXPECT_EQ(info->getBlockSize(), info->getAlignment());
    EXPECT_EQ(info->getMaxSize(), 0xFFFFFFFFU);
    OsDateTypes::DateRep date;
    OsDateUtil::makeTime(2020, 2, 29, 23, 59, 58.75, OsDateTypes::LocalTime, date);
    file.setLastModificationTime(date);
    const Kr::ObjPtr<OsDateTypes::DateRep> modified(file.getLastModificationTime());
    EXPECT_EQ(OsDateUtil::format(*modified, "%F %T.%f"), "2020-02-29 23:59:58.000000");
    EXPECT_EQ(modified->getMode(), OsDateTypes::LocalTime);
    const Kr::ObjPtr<OsDateTypes::DateRep> accessed(file.getLastAccessTime());
    EXPECT_GT(*accessed, *modified);
    file.setReadOnly(true);
    EXPECT_TRUE(file.isReadable() && !file.isWritable());
    EXPECT_EQ(codeOf([&] { file.remove(); }), accessDenied);
    file.setReadOnly(false);
    {
        const OsFileReader reader(file);
        EXPECT_EQ(file.getAccess(), 0); // somebody holds it
        EXPECT_EQ(codeOf([&] { file.remove(); }), sharingViolation);
    }
    OsFile folder(at("."));
    EXPECT_TRUE(folder.isDirectory() && !folder.isFile());
    EXPECT_EQ(folder.getAccess(), 0);
    EXPECT_EQ(codeOf([&] { static_cast<void>(folder.getSize()); }), accessDenied);
    file.remove();
    EXPECT_FALSE(file.exists());
    EXPECT_EQ(file.getAccess(), 0);
}

TEST_F(Files, RaiseWhatIsWrongWithTheirPath)
{
    OsFile none{OsFilePath()};
    OsFile missing(at("missing"));
    OsFile present(put("present", ""));
    const auto check = [&](auto action)
    {
        EXPECT_EQ(reasonOf<OsFileEx::ExNullFilePath>([&] { action(none); }),
                  "File has null file path.");
        EXPECT_EQ(reasonOf<OsFileEx::ExInvalidPath>([&] { action(missing); }, "src/base/osFile"),
                  "Invalid path: '" + missing.getPath().getString().substr(0, 256) + "'.");
    };
    check([](OsFile& file) { file.getOwner(); });
    check([](OsFile& file) { static_cast<void>(file.getSize()); });
    check([](OsFile& file) { static_cast<void>(file.getFullSize()); });
    check([](OsFile& file) { file.getLastModificationTime(); });
    check([](OsFile& file) { file.getLastAccessTime(); });
    check([](OsFile& file) { file.getUnbufferedInfo(); });
    check([](OsFile& file) { static_cast<void>(file.isSymLink()); });
    check([](OsFile& file) { static_cast<void>(file.isFile()); });
    check([](OsFile& file) { static_cast<void>(file.isDirectory()); });
    const std::function<void()> actions[] = {
        [&] { static_cast<void>(none.exists()); },
        [&] { static_cast<void>(none.getAccess()); },
        [&] { none.refreshInfo(); },
        [&] { none.remove(); },
        [&] { none.create(permissions, false); },
        [&] { none.renameTo("x"); },
        [&] { none.copyTo("x"); },
        [&] { present.renameTo(""); },
        [&] { present.copyTo(""); },
        [&] { OsFileReader reader{OsFilePath()}; },
        [&] { OsFileWriter writer(OsFilePath(), permissions, false); },
        [&] { OsSafeWriter writer{OsFilePath()}; },
        [&] { OsDir("").create(); },
        [&] { OsDirWalker walker(""); }};
    for (const auto& action : actions)
        EXPECT_TRUE(raises<OsFileEx::ExNullFilePath>(action)) << &action - actions;
    EXPECT_EQ(reasonOf<Kr::ExInternalError>([] { OsFile(".").getUnbufferedInfo(); },
                                            "src/base/osFileWindows"),
              "Assertion 'path[1] == ':'' failed.");
    struct
    {
        OsFilePath path;
        unsigned long read;
        unsigned long write; ///< 0: succeeds
    } const cases[] = {{at("missing"), notFound, 0},
                       {at("no\\missing"), pathNotFound, pathNotFound},
                       {at("present\\x"), pathNotFound, pathNotFound},
                       {at("."), accessDenied, accessDenied},
                       {at("a?b"), invalidName, invalidName},
                       {"Q:\\y\\x", pathNotFound, pathNotFound}};
    for (const auto& c : cases)
    {
        EXPECT_EQ(codeOf([&] { OsFileReader reader(c.path); }), c.read) << c.path;
        EXPECT_EQ(codeOf([&] { OsFileWriter writer(c.path, permissions, false); }), c.write)
            << c.path;
    }
}

TEST_F(Files, AreCreatedRenamedAndCopied)
{
    OsFile file(at("new"));
    file.create(permissions, true);
    EXPECT_EQ(reasonOf<OsFileEx::ExFileExists>([&] { file.create(permissions, true); },
                                               "src/base/osFsUtilsWindows"),
              "File already exists.");
    put("new", "content");
    file.create(permissions, false);
    EXPECT_EQ(file.getSize(), 0U);

    put("other", "other");
    put("new", "content");
    EXPECT_EQ(codeOf([&] { file.renameTo(at("other")); }), alreadyExists);
    EXPECT_EQ(file.getPath(), at("new"));
    file.renameTo(at("renamed"));
    EXPECT_EQ(file.getPath(), at("renamed"));
    EXPECT_EQ(codeOf([&] { OsFile(at("new")).renameTo(at("x")); }), notFound);

    OsDir(at("dir")).create();
    file.copyTo(at("dir"));
    file.copyTo(at("other"));
    EXPECT_EQ(get("dir/renamed") + get("other"), "contentcontent");
    OsFile other(at("other"));
    other.setReadOnly(true);
    EXPECT_EQ(reasonOf<OsFileEx::ExPathNotWritable>([&] { file.copyTo(at("other")); }),
              "Invalid path: '" + at("other").getString().substr(0, 256) + "'.");
    other.setReadOnly(false);
    // Onto itself, by whatever name, it would be emptied.
    for (const char* name : {"renamed", "dir\\..\\renamed", "."})
        EXPECT_TRUE(raises<OsFileEx::ExPathNotWritable>([&] { file.copyTo(at(name)); })) << name;
    EXPECT_EQ(get("renamed"), "content");
    EXPECT_EQ(codeOf([&] { OsFile(at("gone")).copyTo(at("x")); }), notFound);
    EXPECT_FALSE(OsFile(at("x")).exists());

    for (const std::size_t size : {65535U, 65536U, 65537U, 200000U})
    {
        std::string content(size, '\0');
        for (std::size_t i = 0; i < size; ++i)
            content[i] = static_cast<char>(i * 7919 >> 5);
        put("large", content);
        OsFile(at("large")).copyTo(at("copy"));
        EXPECT_TRUE(get("copy") == content) << size;
    }
}

TEST_F(Files, AreReadAndWritten)
{
    const OsFilePath path = at("file");
    OsFileWriter writer(path, permissions, true);
    EXPECT_EQ(writer.write("0123456789", 10), 10U);
    EXPECT_EQ(writer.seek(-4, OsFileTypes::SeekCurrent), 6U);
    EXPECT_EQ(writer.seek(2, OsFileTypes::SeekStart), 2U);
    EXPECT_EQ(writer.write("ab", 2), 2U);
    writer.flush();

    OsFileReader reader((OsFile(path)));
    char buffer[16] = {};
    EXPECT_EQ(reader.read(buffer, 5), 5U);
    EXPECT_EQ(std::string(buffer, 5), "01ab4");
    EXPECT_EQ(reader.seek(-2, OsFileTypes::SeekEnd), 8U);
    EXPECT_EQ(reader.read(buffer, 16), 2U);
    EXPECT_EQ(reader.read(buffer, 16), 0U);
    writer.reserve(3); // shrinks under the reader
    EXPECT_EQ(reader.read(buffer, 16), 0U);
    writer.write("xyz", 3); // and grows
    EXPECT_EQ(reader.seek(0, OsFileTypes::SeekStart), 0U);
    EXPECT_EQ(reader.read(buffer, 16), 6U);
    EXPECT_EQ(std::string(buffer, 6), "01axyz");
    writer.reserve(0);
    EXPECT_EQ(OsFile(path).getSize(), 0U);
    writer.reserve(100);
    EXPECT_EQ(writer.seek(0, OsFileTypes::SeekCurrent), 100U);
    EXPECT_EQ(codeOf([&] { writer.seek(-200, OsFileTypes::SeekCurrent); }), 131U);
    // The last error stays, and a seek that finds it there says so.
    EXPECT_EQ(codeOf([&] { writer.seek(0, OsFileTypes::SeekCurrent); }), 131U);
    EXPECT_TRUE(raises<Kr::ExInternalError>(
        [&] { writer.seek(0, static_cast<OsFileTypes::SeekMode>(3)); }));
    EXPECT_EQ(codeOf([&] { OsFileWriter again(path, permissions, true); }), fileExists);
    EXPECT_EQ(writer.getPath(), path);

    reader.close();
    writer.close();
    const std::function<void()> actions[] = {
        [&] { reader.close(); }, [&] { reader.read(buffer, 1); },
        [&] { reader.seek(0, OsFileTypes::SeekStart); },
        // and the writer's
        [&] { writer.close(); }, [&] { writer.write(buffer, 1); },
        [&] { writer.seek(0, OsFileTypes::SeekStart); }, [&] { writer.reserve(0); },
        [&] { writer.flush(); }};
    for (const auto& action : actions)
    {
        const bool isReaders = &action - actions < 3;
        const std::string why = reasonOf<Kr::ExSysErrorANSI>(
            action, isReaders ? "src/base/osFileReader" : "src/base/osFileWriter");
        EXPECT_EQ(why, std::strerror(EBADF));
    }
    struct Element : OsFile
    {
        using OsFile::OsFile;
        void closeTwice() const
        {
            const OsFileTypes::Handle handle = open(1);
            close(handle);
            close(handle);
        }
    };
    EXPECT_EQ(codeOf([&] { Element(path).closeTwice(); }), 6U);
}

TEST_F(Files, MayBeLargerThanTheInterfaceCounts)
{
    OsFile file(at("large"));
    file.create(permissions, true);
    for (const std::uint64_t size : {0xFFFFFFFEULL, 0xFFFFFFFFULL, 0x100000005ULL}) // sparse
    {
        fs::resize_file(at("large").getStdPath(), size);
        const auto low = static_cast<std::uint32_t>(size);
        if (low == 0xFFFFFFFF) // which stands for a failure
            EXPECT_TRUE(raises<Kr::ExSysErrorWindows>([&] { static_cast<void>(file.getSize()); }));
        else
            EXPECT_EQ(file.getSize(), low);
        EXPECT_EQ(file.getFullSize(), size);
        EXPECT_EQ(OsFileReader(file).seek(-1, OsFileTypes::SeekEnd), low - 1);
    }
    const long beyond = std::numeric_limits<long>::max(); // on some systems of more than 32 bits
    OsFileReader reader(file);
    if (beyond > 0x7FFFFFFF)
        EXPECT_EQ(codeOf([&] { reader.seek(beyond, OsFileTypes::SeekStart); }), 87U);
    else
        EXPECT_EQ(reader.seek(beyond, OsFileTypes::SeekStart), 0x7FFFFFFFU);
    reader.close();
    file.remove();
}

TEST_F(Files, HavePathsOfAnyLengthAndLetter)
{
    const std::string element(100, 'e');
    OsFilePath deep = at("deep");
    for (int i = 0; i < 6; ++i)
        deep += element.c_str();
    OsDir dir(deep);
    dir.createAll();
    OsFile file(deep + "\xE9t\xE9.txt"); // in the narrow code page of western Europe
    OsFileWriter(file, permissions, true).write("abc", 3);
    EXPECT_EQ(file.getFullSize(), 3U);
    file.copyTo(deep + "copy");
    OsFile(deep + "copy").renameTo(deep + "renamed");
    EXPECT_EQ(dir.list(OsDirFilter::name("r*")).size(), 1U);
    EXPECT_EQ(OsFile(dir.list()[0]).getFullSize(), 3U);
    EXPECT_EQ(file.getPath().getBaseName(), "\xE9t\xE9.txt");
    EXPECT_EQ(OsDir(at("deep")).removeAll(), 9U);
    const OsFilePath tooLong = at(std::string(300, 'n').c_str());
    EXPECT_FALSE(OsFile(tooLong).exists());
    EXPECT_NE(codeOf([&] { OsFileWriter writer(tooLong, permissions, false); }), 0U);
}

TEST_F(Files, AreReplacedAsAWholeOrNotAtAll)
{
    const OsFilePath path = put("target", "old");
    const auto entries = [&] { return OsDir(at(".")).list().size(); };
    {
        OsSafeWriter writer(path);
        writer.write("new", 3);
        EXPECT_EQ(get("target"), "old");
    }
    EXPECT_EQ(get("target"), "old");
    {
        OsSafeWriter writer(path);
        writer.write("ne", 2);
        writer.write("w", 1);
        writer.commit();
        EXPECT_TRUE(raises<Kr::ExSysErrorANSI>([&] { writer.write("x", 1); }));
        EXPECT_TRUE(raises<Kr::ExSysErrorANSI>([&] { writer.commit(); }));
    }
    EXPECT_EQ(get("target"), "new");
    {
        // Somebody holds the target: the commit waits, fails, and can be done once more.
        OsFileReader reader(path);
        OsSafeWriter writer(path);
        EXPECT_EQ(writer.setPatience(0.), 1.);
        writer.write("newer", 5);
        EXPECT_EQ(codeOf([&] { writer.commit(); }), accessDenied);
        EXPECT_EQ(get("target"), "new");
        OsSafeWriter(path).write("x", 1); // lets the complete one be
        writer.setPatience(60.);
        std::thread closer(
            [&]
            {
                std::this_thread::sleep_for(std::chrono::milliseconds(20));
                reader.close();
            });
        writer.commit();
        closer.join();
        EXPECT_EQ(get("target"), "newer");
    }
    OsSafeWriter(at("fresh")).commit();
    EXPECT_EQ(entries(), 2U); // nothing temporary is left
    OsFile(path).setReadOnly(true);
    EXPECT_TRUE(raises<OsFileEx::ExPathNotWritable>([&] { OsSafeWriter writer(path); }));
    OsFile(path).setReadOnly(false);
    EXPECT_TRUE(raises<OsFileEx::ExPathNotWritable>([&] { OsSafeWriter writer(at(".")); }));
    EXPECT_EQ(codeOf([&] { OsSafeWriter writer(at("no\\file")); }), pathNotFound);
    EXPECT_EQ(entries(), 2U);
}

// Directories

TEST_F(Files, LieInDirectoriesThatAreWalked)
{
    OsDir root(at("root"));
    EXPECT_FALSE(root.exists());
    EXPECT_TRUE(raises<OsFileEx::ExInvalidPath>([&] { root.list(); }));
    EXPECT_TRUE(raises<OsFileEx::ExInvalidPath>([&] { root.removeAll(); }));
    OsDir(at("root\\a\\b\\")).createAll();
    OsDir(at("root\\.hidden")).create();
    OsDir(at("root\\empty")).create();
    for (const char* name :
         {"root/1.cpp", "root/2.h", "root/a/3.cpp", "root/a/b/4.CPP", "root/.hidden/5.cpp"})
        put(name, name);
    EXPECT_TRUE(raises<OsFileEx::ExFileExists>([&] { root.create(); }));
    EXPECT_TRUE(raises<OsFileEx::ExFileExists>([&] { OsDir(at("root\\1.cpp")).create(); }));
    EXPECT_TRUE(raises<OsFileEx::ExFileExists>([&] { OsDir(at("root\\1.cpp\\x")).createAll(); }));
    EXPECT_EQ(codeOf([&] { OsDir(at("root\\x\\y")).create(); }), pathNotFound);
    EXPECT_EQ(codeOf([&] { root.remove(); }), notEmpty);
    EXPECT_FALSE(OsDir(at("root\\1.cpp")).exists());
    EXPECT_TRUE(OsDir(at("root\\empty")).isEmpty());
    EXPECT_FALSE(root.isEmpty());

    const OsDirFilter files = OsDirFilter::type(OsFileTypes::RegularFile);
    const OsDirFilter cpp = OsDirFilter::name("*.cpp");
    struct
    {
        OsDirFilter filter;
        const char* expected;
    } const cases[] = {
        {OsDirFilter(), "1.cpp 2.h a a\\3.cpp a\\b a\\b\\4.CPP empty "},
        {cpp, "1.cpp a\\3.cpp "},
        {OsDirFilter::name("*.cpp", OsDirFilter::IgnoreCase), "1.cpp a\\3.cpp a\\b\\4.CPP "},
        {files && !cpp, "2.h a\\b\\4.CPP "},
        {!files || OsDirFilter::name("?.h"), "2.h a a\\b empty "},
        {OsDirFilter::depth(0), "1.cpp 2.h a empty "},
        {OsDirFilter::where([](const OsDirEntry& entry) { return entry.getName()[0] == 'b'; }),
         "a\\b "},
    };
    for (const auto& c : cases)
    {
        OsDirWalker walker(root.getPath(), c.filter && !OsDirFilter::name(".*"));
        walker.setDescent(!OsDirFilter::name(".*"));
        std::set<std::string> met;
        for (const OsDirEntry& entry : walker)
        {
            met.insert(entry.getRelativePath().getString());
            EXPECT_EQ(entry.getPath(), root.getPath() + entry.getRelativePath());
            EXPECT_EQ(entry.isDirectory(), OsFile(entry.getPath()).isDirectory());
        }
        std::string all;
        for (const std::string& path : met)
            all += path + ' ';
        EXPECT_EQ(all, c.expected);
    }
    EXPECT_EQ(root.list(files).size(), 2U);
    EXPECT_EQ(root.list()[1], root.getPath() + "1.cpp");
    EXPECT_NE(codeOf([&] { OsDirWalker(at("root\\1.cpp")).next(); }), 0U);
    OsFile(at("root\\a\\3.cpp")).setReadOnly(true);
    EXPECT_EQ(root.removeAll(), 10U);
    EXPECT_FALSE(root.exists());
}

TEST_F(Files, MayComeAndGoWhileTheyAreWalked)
{
    constexpr int count = 60;
    for (int i = 0; i < count; ++i)
        OsDir(at(("root\\d" + std::to_string(i) + "\\e").c_str())).createAll();
    std::thread other(
        [&]
        {
            for (int i = 0; i < count; ++i)
            {
                OsDir old(at(("root\\d" + std::to_string(i)).c_str()));
                while (codeOf([&] { old.removeAll(); }) == sharingViolation)
                    std::this_thread::yield(); // the system may keep what is being listed
                OsDir(at(("root\\n" + std::to_string(i)).c_str())).create();
            }
        });
    EXPECT_NO_THROW({
        for (int round = 0; round < 5; ++round)
            for (OsDirWalker walker(at("root")); walker.next();)
                EXPECT_LE(walker.getEntry().getDepth(), 1U);
    });
    other.join();
    EXPECT_EQ(OsDir(at("root")).list().size(), static_cast<std::size_t>(count));
}

TEST(DirFilter, MatchesPatterns)
{
    struct
    {
        const char* name;
        const char* pattern;
        bool matches;
    } const cases[] = {
        {"", "", true},
        {"", "*", true},
        {"a", "", false},
        {"abc", "a*c", true},
        {"abc", "a?c", true},
        {"ac", "a?c", false},
        {"abcbc", "a*bc", true},
        {"abcbd", "a*bc", false},
        {"aXb", "axb", false},
        {"mississippi", "m*issip*", true},
        {"aaaaaaaaaaaaaaab", "*a*a*a*a*c", false},
        {"a.b.c", "*.c", true},
        {"*", "?", true},
    };
    for (const auto& c : cases)
        EXPECT_EQ(OsDirFilter::matches(c.name, c.pattern), c.matches) << c.name << ' ' << c.pattern;
    EXPECT_TRUE(OsDirFilter::matches("aXb", "Ax*", OsDirFilter::IgnoreCase));
}

// Dates

TEST(Date, IsMadeConvertedAndFormatted)
{
    OsDateTypes::DateRep date;
    OsDateUtil::makeTime(2024, 2, 29, 13, 4, 5.25, OsDateTypes::UniversalTime, date);
    EXPECT_EQ(OsDateUtil::format(date, "%a %A %b %B %d %j %y|%F %T.%f %z %%"),
              "Thu Thursday Feb February 29 060 24|2024-02-29 13:04:05.250000 Z %");
    EXPECT_EQ(OsDateUtil::getTimePoint(date).time_since_epoch().count(), 1709211845250000);
    const auto same =
        OsDateUtil::fromTimePoint(OsDateUtil::getTimePoint(date), OsDateTypes::UniversalTime);
    EXPECT_EQ(same, date);
    EXPECT_EQ(same.getSeconds(), 5.25);
    std::ostringstream stream;
    stream << date;
    EXPECT_EQ(stream.str(), "2024-02-29T13:04:05Z");

    struct
    {
        int year, month, day;
        std::int64_t days;
        int weekDay;
    } const days[] = {{1601, 1, 1, -134774, 1},    {1969, 12, 31, -1, 3},  {1970, 1, 1, 0, 4},
                      {2000, 2, 29, 11016, 2},     {2000, 3, 1, 11017, 3}, {2100, 3, 1, 47541, 1},
                      {30827, 12, 31, 10540167, 5}};
    for (const auto& c : days)
    {
        OsDateUtil::makeTime(c.year, c.month, c.day, 0, 0, 0., OsDateTypes::UniversalTime, date);
        const OsDateUtil::TimePoint point = OsDateUtil::getTimePoint(date);
        EXPECT_EQ(point.time_since_epoch().count(), c.days * 86400000000) << c.year;
        EXPECT_EQ(date.getWeekDay(), c.weekDay) << c.year;
        const auto back = OsDateUtil::fromTimePoint(point, OsDateTypes::UniversalTime);
        EXPECT_EQ(back.getYear() * 10000 + back.getMonth() * 100 + back.getDay(),
                  c.year * 10000 + c.month * 100 + c.day);
    }
    const OsDateTypes::DateRep before = date;
    struct
    {
        int year, month, day, hour, minute;
        double seconds;
    } const wrong[] = {
        {2023, 2, 29, 0, 0, 0.},  {2023, 13, 1, 0, 0, 0.},         {2023, 0, 1, 0, 0, 0.},
        {2023, 1, 0, 0, 0, 0.},   {1600, 1, 1, 0, 0, 0.},          {30828, 1, 1, 0, 0, 0.},
        {2023, 1, 1, 24, 0, 0.},  {2023, 1, 1, 0, 60, 0.},         {2023, 1, 1, 0, 0, 60.},
        {2023, 1, 1, 0, 0, -0.1}, {2023, 1, 1, 0, 0, std::nan("")}};
    for (const auto& c : wrong)
        EXPECT_TRUE(raises<Kr::OsDateEx::ExInvalidDate>(
            [&]
            {
                OsDateUtil::makeTime(c.year, c.month, c.day, c.hour, c.minute, c.seconds,
                                     OsDateTypes::LocalTime, date);
            }));
    EXPECT_EQ(date, before);
    EXPECT_EQ(reasonOf<Kr::OsDateEx::ExInvalidDate>(
                  [&]
                  { OsDateUtil::makeTime(2023, 2, 29, 1, 2, 3.5, OsDateTypes::LocalTime, date); }),
              "Invalid date: 2023-2-29 1:2:3.5.");
    for (const char* format : {"%Q", "%"})
        EXPECT_EQ(
            reasonOf<Kr::OsDateEx::ExInvalidFormat>([&] { OsDateUtil::format(date, format); }),
            "Invalid date format: '" + std::string(format) + "'.");
}

TEST(Date, IsTheSameMomentInBothModes)
{
    for (const int month : {1, 7})
    {
        OsDateTypes::DateRep universal;
        OsDateUtil::makeTime(2024, month, 1, 0, 30, 1.5, OsDateTypes::UniversalTime, universal);
        const auto local = OsDateUtil::convert(universal, OsDateTypes::LocalTime);
        EXPECT_EQ(local, universal);
        EXPECT_EQ(local.getSeconds(), 1.5);
        OsDateTypes::DateRep again;
        OsDateUtil::makeTime(local.getYear(), local.getMonth(), local.getDay(), local.getHour(),
                             local.getMinute(), local.getSeconds(), OsDateTypes::LocalTime, again);
        EXPECT_EQ(again.getUtcOffset(), local.getUtcOffset());
    }
    const auto now = OsDateUtil::getCurrentTime(OsDateTypes::LocalTime);
    const auto difference = std::chrono::system_clock::now() - OsDateUtil::getTimePoint(now);
    EXPECT_LT(std::chrono::abs(difference), std::chrono::seconds(60));
}

} // namespace

// Two processes at one file: what they deny each other, and what is left of one that is killed.

#include "scenario.h"

#include <base/osDir.h>
#include <base/osFile.h>
#include <base/osFileReader.h>
#include <base/osFileWriter.h>
#include <base/osSafeWriter.h>

#include <fileFolder.h>
#include <handleCount.h>
#include <systemCode.h>

#include <cstdlib>
#include <functional>
#include <memory>

namespace
{

using namespace Kr;

const OsFileTypes::Permissions permissions(3, 3, 0);
std::string ownPath;
OsFilePath path; ///< of the file that both are at

void put(const OsFilePath& at, const std::string& text)
{
    OsFileWriter(at, permissions, false).write(text.data(), text.size());
}

std::string get(const OsFilePath& at)
{
    return FileFolder::read(at.getStdPath());
}

// The other process

void replace()
{
    OsSafeWriter writer(path);
    writer.setPatience(0.);
    writer.write("new", 3);
    writer.commit();
}

/// Leaves the codes of all that it tries beside the file.
void tryAll()
{
    const OsFilePath away = path.getString() + ".away";
    const std::function<void()> actions[] = {[] { OsFileReader reader(path); },
                                             [] { OsFileWriter writer(path, permissions, false); },
                                             replace,
                                             [&]
                                             {
                                                 OsFile file(path);
                                                 file.renameTo(away);
                                                 file.renameTo(path);
                                             },
                                             [] { OsFile(path).remove(); }};
    std::string codes = std::to_string(OsFile(path).getAccess());
    for (const auto& action : actions)
        codes += ' ' + std::to_string(codeOf(action));
    put(path.getString() + ".codes", codes);
}

/// Ends in the middle of a replacement, as a process that is killed does.
void die()
{
    OsSafeWriter writer(path);
    writer.write(std::string(100000, 'n').data(), 100000);
    std::_Exit(3);
}

// The cases

int start(const char* program)
{
    const std::string quote = ownPath.find(' ') == std::string::npos ? "" : "\"";
    return std::system(
        (quote + ownPath + quote + ' ' + program + ' ' + path.getStdPath().string()).c_str());
}

void sharing()
{
    const FileFolder folder;
    path = OsFilePath(folder / "file");
    struct
    {
        const char* who;
        std::function<std::shared_ptr<void>()> hold;
        const char* codes; ///< access, read, write, replace, rename, remove
    } const cases[] = {
        {"nobody", [] { return nullptr; }, "3 0 0 0 0 0"},
        {"a reader", [] { return std::make_shared<OsFileReader>(path); }, "0 0 0 5 32 32"},
        {"a writer", [] { return std::make_shared<OsFileWriter>(path, permissions, false); },
         "0 0 0 5 32 32"},
        {"who will replace it", [] { return std::make_shared<OsSafeWriter>(path); },
         "3 0 0 0 0 0"}};
    for (const auto& c : cases)
    {
        put(path, "old");
        const unsigned handles = HandleCount::get();
        {
            const std::shared_ptr<void> holder = c.hold();
            SCENARIO_CHECK(start("tryAll") == 0);
        }
        Scenario::check(get(path.getString() + ".codes") == c.codes, c.who, __LINE__);
        SCENARIO_CHECK(HandleCount::get() == handles);
    }
}

/// A killed process leaves the old content and its temporary file, which the next writer removes;
/// one that is being written stays.
void killedWriter()
{
    const FileFolder folder;
    path = OsFilePath(folder / "file");
    const auto left = [](int number)
    { return OsFile(path.getString() + ".~unsaved" + std::to_string(number)).exists(); };
    put(path, "old");
    for (int i = 0; i < 2; ++i)
    {
        SCENARIO_CHECK(start("die") != 0);
        SCENARIO_CHECK(get(path) == "old" && left(0) && !left(1));
    }
    OsSafeWriter writer(path);
    writer.write("newer", 5);
    SCENARIO_CHECK(start("die") != 0);
    SCENARIO_CHECK(left(0) && left(1));
    replace();
    SCENARIO_CHECK(get(path) == "new" && left(0) && !left(1));
    writer.commit();
    SCENARIO_CHECK(get(path) == "newer");
    SCENARIO_CHECK(OsDir(folder.getPath()).list().size() == 1);
}

} // namespace

int main(int argc, char** argv)
{
    ownPath = argv[0];
    if (argc > 2)
        path = OsFilePath(std::filesystem::path(argv[2]));
    const Scenario::Case cases[] = {
        {"tryAll", tryAll}, {"die", die}, {"sharing", sharing}, {"killedWriter", killedWriter}};
    return Scenario::run(cases, argc, argv);
}

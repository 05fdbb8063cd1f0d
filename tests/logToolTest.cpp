// kr-log's reading, filtering and showing, over logs that the library writes here.

#include "logTestFiles.h"

#include <arguments.h>
#include <logFilter.h>
#include <logMerge.h>
#include <logPrinter.h>
#include <logSummary.h>

#include <base/log.h>
#include <base/threadName.h>

#include <gtest/gtest.h>

#include <cstring>
#include <sstream>
#include <thread>

namespace
{

using KrLog::Arguments;
using KrLog::Merge;
using KrLog::Record;
using LogTest::Folder;

std::vector<std::pair<std::string, std::string>> settings;

const char* lookUp(const char* name)
{
    for (const auto& [key, value] : settings)
        if (key == name)
            return value.c_str();
    return nullptr;
}

/// Logs four messages, from two threads, of two groups and four levels.
void writeLog(const std::string& folder, const char* format)
{
    settings = {
        {"KR_LOG_DIR", folder}, {"KR_LOG_FORMAT", format}, {"KR_LOG_GROUPS", "A=Profiling"}};
    Kr::LgLog::init(lookUp);
    {
        const Kr::LgMinorGroup cache(Kr::LgMajorGroup::getInstanceForName("A"), "Cache");
        const Kr::LgMinorGroup longOne(Kr::LgMajorGroup::getInstanceForName("A"),
                                       "A group of two columns");
        KR_LOG(cache, Warning) << "tab\tbell\a \"quoted\" \\ \xC3\xA4";
        std::thread(
            [&]
            {
                Kr::ThreadName::set("a painter");
                KR_LOG(longOne, Error) << "  indented";
            })
            .join();
        KR_LOG(cache, FatalError) << "-";
        KR_LOG(cache, Profiling) << std::string(40000, 'x');
    }
    Kr::LgLog::destroy();
}

std::vector<Record> readAll(const std::vector<std::string>& files)
{
    Merge merge;
    for (const std::string& file : files)
        merge.add(file, true);
    std::vector<Record> records;
    merge.run([&](const Record& record) { records.push_back(record); }, false);
    return records;
}

TEST(LogTool, ReadsWhatTheLibraryWrites)
{
    for (const char* format : {"text", "json"})
    {
        const Folder folder;
        writeLog(folder.getPath(), format);
        const std::vector<Record> records = readAll({folder / "prof.log", folder / "events.log"});
        const bool isJson = std::strcmp(format, "json") == 0;
        ASSERT_EQ(records.size(), 4U);
        EXPECT_EQ(records[0].level, Kr::LgTypes::Warning);
        EXPECT_EQ(records[0].thread, "main");
        EXPECT_EQ(records[0].group, "Cache");
        EXPECT_EQ(records[0].text, isJson ? "tab\tbell\a \"quoted\" \\ \xC3\xA4"
                                          : "tab\\tbell\\x07 \"quoted\" \\ \xC3\xA4");
        EXPECT_EQ(records[1].threadName, "a painter");
        EXPECT_EQ(records[1].group, isJson ? "A group of two columns" : "A group of two");
        EXPECT_EQ(records[2].text, "-");
        EXPECT_EQ(records[3].level, Kr::LgTypes::Profiling);
        EXPECT_EQ(records[3].isCut, isJson);
        std::string shown;
        for (const Record& record : {records[0], records[2]})
            shown += isJson ? KrLog::toJson(record) : KrLog::toColumns(record, false);
        const std::vector<std::string> lines = LogTest::readLines(folder / "events.log");
        EXPECT_EQ(shown, lines[0] + '\n' + lines[2] + '\n') << "shown as it was written";
    }
}

Record makeRecord(const char* line)
{
    return KrLog::parseRecord(line);
}

const char* const someLines[] = {
    "2001-11-21T07:33:08.100000Z  Warning         4711:main       Cache         a",
    "2001-11-21T07:33:09.200000Z  Informational   4711:12         Cache         b",
    "2001-11-21T07:34:00.300000Z  Internal Error  4712:main       UI            c",
    "2001-11-21T08:00:00.400000Z  Profiling       4712:painter    UI            d",
    "2001-11-21T08:00:00.500000Z  Informational   4712:9          -             Event overflow [7]",
    "Warning         4712:9          Ed            no time",
    "a line of somebody else",
};

Arguments readArguments(std::vector<std::string> words)
{
    words.insert(words.begin(), "kr-log");
    std::vector<char*> argv;
    for (std::string& word : words)
        argv.push_back(word.data());
    return Arguments::read(static_cast<int>(argv.size()), argv.data());
}

TEST(LogTool, Filters)
{
    struct Case
    {
        std::vector<std::string> arguments;
        const char* accepted; ///< a digit for each line
    };
    const Case cases[] = {
        {{}, "1111111"},
        {{"-l", "warning"}, "1010010"},
        {{"-l", "Fatal Error", "-l", "Profiling"}, "0011000"},
        {{"-g", "UI", "-g", "E?"}, "0011010"},
        {{"-t", "main"}, "1010000"},
        {{"-t4712:*"}, "0011110"},
        {{"-s", "2001-11-21T07:33:09", "-u", "2001-11-21T07"}, "0110000"},
        {{"-u", "2001-11-21T07:33:09"}, "1100000"},
        {{"-s", "1d"}, "0000000"},
        {{"-u", "90s"}, "1111100"},
    };
    for (const Case& each : cases)
    {
        std::vector<std::string> words = each.arguments;
        words.insert(words.begin(), {"-f", "none.log"}); // options behind the file, too
        const Arguments arguments = readArguments(words);
        std::string accepted;
        for (const char* line : someLines)
            accepted += arguments.filter.accepts(makeRecord(line)) ? '1' : '0';
        EXPECT_EQ(accepted, each.accepted) << words.back();
    }
}

TEST(LogTool, RefusesByName)
{
    const std::pair<std::vector<std::string>, const char*> cases[] = {
        {{"-l", "Verbose"}, "-l: there is no level 'Verbose'"},
        {{"-s", "noon"}, "-s: there is no moment 'noon'"},
        {{"-g"}, "-g needs a value"},
        {{"-fx"}, "there is no option '-fx'"},
        {{"--json"}, "there is no option '--json'"},
        {{"--", "-none.log"}, "'-none.log' cannot be read"},
        {{"summary", "-f"}, "a summary cannot follow"},
    };
    for (const auto& [arguments, problem] : cases)
    {
        try
        {
            readArguments(arguments);
            ADD_FAILURE() << problem;
        }
        catch (const KrLog::UsageError& error)
        {
            EXPECT_STREQ(error.what(), problem);
        }
    }
}

TEST(LogTool, ShowsNothingThatATerminalObeys)
{
    const std::pair<const char*, const char*> cases[] = {
        {"\x1b[2J", "\\x1b[2J"},
        {"\xC2\x9B", "\\x9b"},
        {"\x9B", "\\x9b"},
        {"\xC3\xA4\xE2\x82\xAC", "\xC3\xA4\xE2\x82\xAC"},
        {"\xED\xA0\x80", "\\xed\\xa0\\x80"},
        {"\x7F", "\\x7f"},
    };
    for (const auto& [text, shown] : cases)
        EXPECT_EQ(KrLog::toColumns(makeRecord(text), true), std::string(shown) + '\n');
}

TEST(LogTool, TakesOnlyWholeObjects)
{
    const std::pair<const char*, const char*> cases[] = {
        {R"({"level":"Warning","text":"\u00e4\ud83d\ude00\n"})", "\xC3\xA4\xF0\x9F\x98\x80\n"},
        {R"({"text":"b", "extra" : 1.5 , "level" : "Warning" } )", "b"},
        {R"({"level":"Warning","text":"a)", nullptr},
        {R"({"level":"Warning","text":"\ud83d"})", nullptr},
        {R"({"level":"Warning","text":"\u12g4"})", nullptr},
        {R"({"level":"Warning","text":["a"]})", nullptr},
        {R"({"level":"Loud","text":"a"})", nullptr},
        {R"({"time":"now","level":"Warning","text":"a"})", nullptr},
        {"{", nullptr},
    };
    for (const auto& [line, text] : cases)
    {
        const Record record = makeRecord(line);
        EXPECT_EQ(record.isForeign(), text == nullptr) << line;
        EXPECT_EQ(record.text, text != nullptr ? text : line);
    }
}

TEST(LogTool, SumsUp)
{
    KrLog::Summary summary;
    for (const char* line : someLines)
        summary.add(makeRecord(line));
    summary.add(
        makeRecord(R"({"level":"Warning","group":"Logger","lost":30,"text":"30 messages"})"));
    summary.add(
        makeRecord("Warning         1:main          Logger        5 messages were lost: x"));
    std::ostringstream out;
    summary.print(out);
    EXPECT_EQ(out.str(), "from 2001-11-21T07:33:08.100000Z to 2001-11-21T08:00:00.400000Z\n"
                         "  messages   a second    at most  level           group\n"
                         "         1        0.0          1  Warning         Cache\n"
                         "         1        0.0          1  Informational   Cache\n"
                         "         1        0.0          0  Warning         Ed\n"
                         "         1        0.0          1  Internal Error  UI\n"
                         "         1        0.0          1  Profiling       UI\n"
                         "         5        0.0          1  all             \n"
                         "lost: 42\nlines of no log: 1\n");
}

std::string lineAt(int number)
{
    char line[128];
    std::snprintf(line, sizeof line,
                  "2026-11-21T07:33:08.%06dZ  Warning         1:main          G             %d\n",
                  number, number);
    return line;
}

void append(const std::string& path, int from, int to)
{
    std::ofstream file(path, std::ios::binary | std::ios::app);
    for (int i = from; i < to; ++i)
        file << lineAt(i);
}

void rotate(const std::string& path, int kept)
{
    std::error_code error;
    for (int number = kept; number > 1; --number)
        std::filesystem::rename(path + '.' + std::to_string(number - 1),
                                path + '.' + std::to_string(number), error);
    std::filesystem::rename(path, path + ".1");
}

/// Rotated files first, then whatever comes, each line once and in its order, also when two
/// rotations fall between two looks or the file is emptied.
TEST(LogTool, FollowsRotation)
{
    const Folder folder;
    const std::string path = folder / "a.log";
    append(path, 0, 10);
    rotate(path, 3);
    append(path, 10, 20);
    rotate(path, 3);
    append(path, 20, 30);
    Merge merge;
    merge.add(path, true);
    std::string texts;
    const auto take = [&](const Record& record) { texts += record.text + ' '; };
    const auto expectUpTo = [&](int end)
    {
        merge.run(take, true);
        std::string expected;
        for (int i = 0; i < end; ++i)
            expected += std::to_string(i) + ' ';
        EXPECT_EQ(texts, expected);
    };
    expectUpTo(30);
    append(path, 30, 32);
    expectUpTo(32);
    append(path, 32, 34);
    rotate(path, 3);
    append(path, 34, 60);
    expectUpTo(60);
    rotate(path, 3);
    append(path, 60, 70);
    rotate(path, 3);
    expectUpTo(70);
    append(path, 70, 72);
    expectUpTo(72);
    std::filesystem::resize_file(path, 0);
    append(path, 72, 73);
    expectUpTo(73);
}

/// Two files, the lines of one not quite in order.
TEST(LogTool, MergesByTime)
{
    const Folder folder;
    for (const int i : {2, 1, 5, 4})
        append(folder / "a.log", i, i + 1);
    for (const int i : {0, 3, 6})
        append(folder / "b.log", i, i + 1);
    std::ofstream(folder / "b.log", std::ios::app) << "half a line";
    std::string texts;
    for (const Record& record : readAll({folder / "a.log", folder / "b.log"}))
        texts += record.text + ' ';
    EXPECT_EQ(texts, "0 1 2 3 4 5 6 half a line ");
}

} // namespace

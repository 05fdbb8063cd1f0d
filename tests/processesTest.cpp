#include "fileFolder.h"
#include "handleCount.h"
#include "ownConsole.h"
#include "raised.h"

#include <base/osEnv.h>
#include <base/osFileEx.h>
#include <base/osProcess.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <random>
#include <thread>

namespace
{

using Kr::OsCommand;
using Kr::OsFilePath;
using Kr::OsProcess;
using Kr::OsProcessEx;
using testing::HasSubstr;
using testing::Not;
using Texts = std::vector<std::string>;

OsCommand child(const Texts& arguments)
{
    return OsCommand("test_processes_child", arguments);
}

std::string hex(const Texts& texts)
{
    std::string result;
    for (const std::string& text : texts)
    {
        for (const char c : text)
        {
            char digits[3];
            std::snprintf(digits, sizeof digits, "%02x",
                          static_cast<unsigned>(static_cast<unsigned char>(c)));
            result += digits;
        }
        result += ';';
    }
    return result;
}

double secondsOf(const std::function<void()>& action)
{
    const auto begin = std::chrono::steady_clock::now();
    action();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

/// Waits until the child says that it is ready.
void awaitReady(OsProcess& process)
{
    std::string text;
    char buffer[64];
    while (text.find("ready") == std::string::npos)
    {
        const std::size_t count = process.read(OsCommand::Output, buffer, sizeof buffer);
        ASSERT_NE(0u, count) << text;
        text.append(buffer, count);
    }
}

TEST(Processes, ArgumentsArriveAsTheyAre)
{
    std::vector<Texts> lists = {
        {"",          "",        "a b",  "\"", "\\",          "\\\"",  "\\\\\" \\", "a\\\\b",
         "c:\\dir\\", "x y\\\\", "*",    "?",  "%PATH%",      "$HOME", "`ls`",      "&|<>^",
         "\"\"",      "' '",     "\t\n", "-",  "\"a\" \"b\"", "\\\\x"},
    };
    std::mt19937 random(20);
    const std::string nasty = "\"\"\\\\\\  \tab*'";
    for (int list = 0; list < 4; ++list)
    {
        lists.emplace_back();
        for (int i = 0; i < 500; ++i)
        {
            std::string text(random() % 12, '\0');
            for (char& c : text)
                c = random() % 4 != 0 ? nasty[random() % nasty.size()]
                                      : static_cast<char>(1 + random() % 126);
            lists.back().push_back(text);
        }
    }
    for (const Texts& list : lists)
    {
        const auto result = OsProcess::run(child({"arguments"}).addArguments(list));
        EXPECT_EQ(hex(list), result.output);
        EXPECT_EQ("exit status 0", result.status.getText());
    }
}

TEST(Processes, LongArgumentsArriveOrAreRefused)
{
    for (const std::size_t count : {1, 16})
    {
        const Texts list(count, std::string(1048576 / count, 'q'));
        try
        {
            const auto result = OsProcess::run(child({"arguments"}).addArguments(list));
            EXPECT_EQ(hex(list), result.output);
        }
        catch (const OsProcessEx::ExArgumentsTooLong& error)
        {
            EXPECT_THAT(error.what(), HasSubstr(" in all, " + std::to_string(list[0].size())));
        }
    }
}

TEST(Processes, WhatCannotBeStartedIsNamed)
{
    const FileFolder folder;
    std::ofstream(folder / "plain.txt") << "text";
    std::ofstream(folder / "script") << "#!/no/such/interpreter\n";
    std::filesystem::permissions(folder / "script", std::filesystem::perms::all);
    const OsFilePath self = OsProcess::getCurrentProgram();
    const struct
    {
        OsCommand command;
        const char* text;
    } table[] = {
        {OsCommand("no-such-program"), "neither beside this program nor in a folder of PATH"},
        {OsCommand(OsFilePath(folder / "missing.exe")), "missing.exe'"},
        {OsCommand(OsFilePath(folder.getPath())), "krbase-files-"},
        {OsCommand(OsFilePath(folder / "plain.txt")), "plain.txt'"},
        {OsCommand(OsFilePath(folder / "script")), "script'"},
        {OsCommand(self).changeFolder(folder / "missing"), "missing'"},
    };
    for (const auto& row : table)
    {
        const auto start = [&row] { OsProcess(row.command).wait(); };
        const std::string reason = reasonOf<OsProcessEx::ExNotStarted>(start);
        EXPECT_THAT(reason, HasSubstr("Cannot start the program '"));
        EXPECT_THAT(reason, HasSubstr(row.text));
        EXPECT_THAT(reason, Not(HasSubstr("Unknown")));
    }
    EXPECT_THROW(OsCommand(""), Kr::OsFileEx::ExNullFilePath);
    EXPECT_THROW(OsProcess(child({}).readFile(folder / "none")), OsProcessEx::ExNoStreamFile);
    EXPECT_EQ("An argument holds a null character behind 'a'.",
              reasonOf<OsProcessEx::ExBadText>([] { child({std::string("a\0b", 3)}); }));
    EXPECT_EQ("'a=b' is no name of a variable.",
              reasonOf<OsProcessEx::ExBadText>([] { child({}).changeVariable("a=b", ""); }));
    EXPECT_THROW(child({}).removeVariable(""), OsProcessEx::ExBadText);
}

TEST(Processes, BatchFilesGetNothingTheyCouldMisread)
{
    const FileFolder folder;
    for (const std::string name : {"plain.bat", "odd.CMD"})
    {
        std::ofstream(folder / name) << "\n";
        for (const char* text :
             {"\"", "%PATH%", "a&b", "a|b", "<", ">", "^", "(", ")", "!x!", "a\nb", "dir\\"})
        {
            const OsCommand command(OsFilePath(folder / name), {"good", text});
            const auto start = [&command] { OsProcess(command).wait(); };
            EXPECT_THAT(reasonOf<OsProcessEx::ExUnsafeArgument>(start),
                        HasSubstr("could misread the argument '" + std::string(text)));
        }
    }
}

TEST(Processes, TheEnvironmentIsInheritedChangedOrReplaced)
{
    Kr::OsEnv::putVariable("KR_PROCESS_A=1");
    Kr::OsEnv::putVariable("KR_PROCESS_B=2");
    const auto show = [](const OsCommand& command)
    { return '\n' + OsProcess::run(command).output; };
    OsCommand command = child({"environment"});
    EXPECT_THAT(show(command), HasSubstr("KR_PROCESS_A=1"));
    command.changeVariable("KR_PROCESS_A", "x = \"y\"").removeVariable("KR_PROCESS_B");
    EXPECT_THAT(show(command), HasSubstr("KR_PROCESS_A=x = \"y\""));
    EXPECT_THAT(show(command), Not(HasSubstr("KR_PROCESS_B")));
    command.clearVariables();
    if (const char* libraries = Kr::OsEnv::getVariable("LD_LIBRARY_PATH"))
        command.changeVariable("LD_LIBRARY_PATH", libraries);
    for (int i = 0; i < 10000; ++i)
        command.changeVariable("N" + std::to_string(i), std::to_string(i));
    const std::string all = show(command);
    EXPECT_THAT(all, Not(HasSubstr("KR_PROCESS_A")));
    for (int i = 0; i < 10000; ++i)
        ASSERT_NE(std::string::npos, all.find("\nN" + std::to_string(i) + '=' + std::to_string(i)));
}

TEST(Processes, StreamsLeadToFiles)
{
    const FileFolder folder;
    std::ofstream(folder / "in") << "123456";
    std::ofstream(folder / "log") << "old";
    OsCommand command = child({"echo"});
    command.readFile(folder / "in").writeFile(OsCommand::Output, folder / "out");
    command.appendFile(OsCommand::Errors, folder / "log");
    EXPECT_TRUE(OsProcess(command).wait().isSuccess());
    EXPECT_EQ("123456", FileFolder::read(folder / "out"));
    EXPECT_EQ("old123", FileFolder::read(folder / "log"));
    command.writeFile(OsCommand::Output, folder / "log").mergeErrors();
    EXPECT_TRUE(OsProcess(command).wait().isSuccess());
    EXPECT_EQ(9u, FileFolder::read(folder / "log").size());

    const auto result = OsProcess::run(child({"echo"}).mergeErrors(), "1234");
    EXPECT_EQ(6u, result.output.size());
    EXPECT_EQ("", OsProcess::run(child({"echo"}).discardStream(OsCommand::Errors), "1").errors);
    EXPECT_EQ("", OsProcess::run(child({"echo"}).discardStream(OsCommand::Input)).output);

    std::filesystem::create_directory(folder / "sub");
    const auto where = OsProcess::run(child({"folder"}).changeFolder(folder / "sub"));
    EXPECT_THAT(where.output, HasSubstr("sub"));
    EXPECT_THAT(where.output, HasSubstr("test_processes_child"));
}

TEST(Processes, EverythingIsServedWithoutADeadlock)
{
    const std::string input(3000000, 'i');
    const auto result = OsProcess::run(child({"flood", "64"}), input, 100.);
    EXPECT_EQ(OsProcess::Complete, result.ending);
    EXPECT_EQ(input.size(), result.inputTaken);
    const std::string block(64 * 65536, 'x');
    EXPECT_TRUE(result.output == block + input) << result.output.size();
    EXPECT_EQ(block.size() + input.size() / 2, result.errors.size());
    const OsCommand one = child({"flood", "64"}).discardStream(OsCommand::Output);
    EXPECT_EQ(block.size() + input.size() / 2, OsProcess::run(one, input, 100.).errors.size());

    const auto deaf = OsProcess::run(child({"exit", "3"}), input, 100.);
    EXPECT_EQ(OsProcess::Complete, deaf.ending);
    EXPECT_GT(input.size(), deaf.inputTaken);
    EXPECT_EQ("exit status 3", deaf.status.getText());
}

TEST(Processes, TimeIsLimitedAndNothingLost)
{
    OsCommand command = child({"sleep"});
    command.pipeStream(OsCommand::Input).pipeStream(OsCommand::Output);
    OsProcess process(command);
    awaitReady(process);
    const std::string input(3000000, 'i');
    const auto served = process.communicate(input, 0.1);
    EXPECT_EQ(OsProcess::TimeOver, served.ending);
    EXPECT_LT(0u, served.inputTaken);
    EXPECT_GT(input.size(), served.inputTaken);
    EXPECT_TRUE(process.isConnected(OsCommand::Input));
    EXPECT_FALSE(process.wait(0.05));
    EXPECT_THROW(process.getExitStatus(), OsProcessEx::ExRunning);
    process.terminate();
    EXPECT_TRUE(process.wait().isTerminated());
    EXPECT_THROW(process.write(input), OsProcessEx::ExInputClosed);
    EXPECT_THROW(process.write("x"), OsProcessEx::ExNotConnected);

    const double seconds = secondsOf(
        [] {
            EXPECT_TRUE(OsProcess::run(child({"sleep", "closing"}), "", 0.2).status.isTerminated());
        });
    EXPECT_LT(seconds, 60.);
}

TEST(Processes, AnInputThatIsClosedIsFedNoMore)
{
    const OwnConsole console;
    OsCommand command = child({"sleep", "closing"});
    OsProcess process(command.pipeStream(OsCommand::Input).pipeStream(OsCommand::Output));
    char buffer[64];
    while (process.read(OsCommand::Output, buffer, sizeof buffer) != 0) // closed after the input
        continue;
    for (int portion = 0; portion < 2; ++portion) // also when it is known already
    {
        const auto served = process.communicate("some", 0.01);
        EXPECT_EQ(OsProcess::TimeOver, served.ending);
        EXPECT_EQ(0u, served.inputTaken);
        EXPECT_FALSE(process.isConnected(OsCommand::Input));
    }
}

TEST(Processes, WhatIsLeftBehindDoesNotHoldTheCaller)
{
    OsCommand command = child({"leaveBehind"});
    OsProcess process(command.pipeStream(OsCommand::Output).leadGroup());
    EXPECT_EQ(1., process.setLinger(0.1));
    const auto served = process.communicate();
    EXPECT_EQ(OsProcess::PipesHeld, served.ending);
    EXPECT_THAT(served.output, HasSubstr("left"));
    EXPECT_TRUE(process.getExitStatus().isSuccess());
    process.terminate(); // the group
    EXPECT_EQ(OsProcess::Complete, process.communicate("", 100.).ending);
}

TEST(Processes, EndsArePoliteFirst)
{
    for (const bool leads : {false, true})
    {
        OsCommand command = child({"endWhenAsked"});
        command.pipeStream(OsCommand::Output);
        OsProcess process(leads ? command.leadGroup() : command);
        awaitReady(process);
        EXPECT_EQ("exit status 7", process.end(100.).getText());
    }
}

TEST(Processes, WhoDoesNotListenIsEndedByForce)
{
    OsCommand command = child({"sleep", "ignoring"});
    OsProcess process(command.pipeStream(OsCommand::Output).leadGroup());
    awaitReady(process);
    process.requestEnd();
    EXPECT_FALSE(process.wait(0.1));
    EXPECT_TRUE(process.end(0.1).isTerminated());
}

TEST(Processes, StatusesAreTold)
{
    // Otherwise the sanitizers make a status of their own of a crash.
    const char* const options = "handle_sigill=0:handle_segv=0";
    const struct
    {
        Texts arguments;
        std::uint32_t code;
        bool isAbnormal;
        const char* text;
    } table[] = {
        {{"exit", "0"}, 0, false, "exit status 0"},
        {{"exit", "200"}, 200, false, "exit status 200"},
        {{"crash"}, 0xC000001D, true, "illegal instruction (0xC000001D)"},
    };
    for (const auto& row : table)
    {
        const auto status = OsProcess::run(child(row.arguments)
                                               .changeVariable("ASAN_OPTIONS", options)
                                               .changeVariable("TSAN_OPTIONS", options))
                                .status;
        EXPECT_EQ(row.code, status.getCode());
        EXPECT_EQ(row.isAbnormal, status.isAbnormal());
        EXPECT_EQ(row.text, status.getText());
    }
}

TEST(Processes, ManyThreadsStartManyProcesses)
{
    const OsCommand echo("test_processes_echo");
    EXPECT_EQ("3", OsProcess::run(echo, "3").output);
    const unsigned before = HandleCount::get();
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 8; ++thread)
        threads.emplace_back(
            [thread, &echo]
            {
                for (int i = 0; i < 25; ++i)
                {
                    const std::string text = std::to_string(thread * 100 + i);
                    const auto result = OsProcess::run(echo, text, 100.);
                    EXPECT_EQ(OsProcess::Complete, result.ending);
                    EXPECT_EQ(text, result.output);
                    EXPECT_TRUE(result.status.isSuccess());
                }
            });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(before, HandleCount::get());
}

TEST(Processes, ObjectsEndWhatTheyHold)
{
    OsCommand command = child({"sleep"});
    OsProcess first(command.pipeStream(OsCommand::Output));
    awaitReady(first);
    EXPECT_LT(0u, first.getId());
    OsProcess second(std::move(first));
    EXPECT_TRUE(second.isRunning());
    EXPECT_THROW(first.isRunning(), Kr::ExInternalError); // NOLINT: moved from on purpose
    EXPECT_LT(0., second.getProcessorTime());
    EXPECT_LT(secondsOf([&second] { second = OsProcess(child({"exit", "0"})); }), 60.);
    EXPECT_TRUE(second.wait().isSuccess());
    EXPECT_EQ(OsProcess::getCurrentProgram().getBaseName(),
              OsFilePath(OsProcess::getCurrentArguments().at(0)).getBaseName());
}

} // namespace

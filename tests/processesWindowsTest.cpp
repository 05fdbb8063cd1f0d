// What only Windows does with processes.

#include "fileFolder.h"

#include <base/osProcess.h>

#include <gtest/gtest.h>

#include <windows.h>

namespace
{

using Kr::OsCommand;
using Kr::OsProcess;

TEST(ProcessesWindows, ABatchFileGetsItsArguments)
{
    const FileFolder folder;
    std::ofstream(folder / "show.bat") << "@echo [%1] [%2] [%3]\n";
    const OsCommand command(Kr::OsFilePath(folder / "show.bat"), {"plain", "a b", "c=d,e;f"});
    const auto result = OsProcess::run(command);
    EXPECT_EQ("[plain] [\"a b\"] [\"c=d,e;f\"]\r\n", result.output);
    EXPECT_TRUE(result.status.isSuccess()) << result.errors;
}

TEST(ProcessesWindows, AConsoleProgramWithoutAGroupCannotBeAsked)
{
    OsCommand command("test_processes_child", {"sleep"});
    OsProcess process(command.discardStream(OsCommand::Output));
    EXPECT_FALSE(process.requestEnd());
    EXPECT_TRUE(process.end(1e9).isTerminated());
}

TEST(ProcessesWindows, AskingAGroupLeavesTheConsoleAndTheStreamsAsTheyWere)
{
    const UINT console = GetConsoleCP();
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    OsCommand command("test_processes_child", {"sleep", "ignoring"});
    OsProcess process(command.pipeStream(OsCommand::Output).leadGroup());
    char ready = 0;
    process.read(OsCommand::Output, &ready, 1);
    process.requestEnd();
    EXPECT_EQ(GetConsoleCP(), console);
    EXPECT_EQ(GetStdHandle(STD_OUTPUT_HANDLE), output);
    EXPECT_TRUE(process.isRunning());
}

} // namespace

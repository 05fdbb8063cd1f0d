// What only Windows does with processes.

#include "fileFolder.h"

#include <base/osProcess.h>

#include <gtest/gtest.h>

namespace
{

TEST(ProcessesWindows, ABatchFileGetsItsArguments)
{
    const FileFolder folder;
    std::ofstream(folder / "show.bat") << "@echo [%1] [%2] [%3]\n";
    const Kr::OsCommand command(Kr::OsFilePath(folder / "show.bat"), {"plain", "a b", "c=d,e;f"});
    const auto result = Kr::OsProcess::run(command);
    EXPECT_EQ("[plain] [\"a b\"] [\"c=d,e;f\"]\r\n", result.output);
    EXPECT_TRUE(result.status.isSuccess()) << result.errors;
}

} // namespace

// Shows, follows and sums up logs, and recovers what killed processes have left. `kr-log --help`.

#include "arguments.h"
#include "logMerge.h"
#include "logPrinter.h"
#include "logSummary.h"

#include <base/exBase.h>
#include <base/krVersion.h>
#include <base/lgRecovery.h>

#include <chrono>
#include <exception>
#include <iostream>
#include <thread>

namespace
{

using KrLog::Arguments;
using KrLog::Record;

constexpr std::chrono::milliseconds pollInterval(200);

KrLog::Merge openLogs(const Arguments& arguments)
{
    KrLog::Merge merge;
    for (const std::string& file : arguments.files)
        merge.add(file, arguments.withRotated);
    return merge;
}

void show(const Arguments& arguments)
{
    KrLog::Merge merge = openLogs(arguments);
    const auto print = [&arguments](const Record& record)
    {
        if (arguments.filter.accepts(record))
            std::cout << (arguments.isJson ? KrLog::toJson(record)
                                           : KrLog::toColumns(record, arguments.isColoured));
    };
    do
    {
        merge.run(print, arguments.isFollowing);
        std::cout.flush();
        if (arguments.isFollowing)
            std::this_thread::sleep_for(pollInterval);
    } while (arguments.isFollowing && std::cout);
}

void sumUp(const Arguments& arguments)
{
    KrLog::Summary summary;
    openLogs(arguments).run(
        [&](const Record& record)
        {
            if (arguments.filter.accepts(record))
                summary.add(record);
        },
        false);
    summary.print(std::cout);
}

int recover(const std::string& folder)
{
    const Kr::LgRecovery::Result result = Kr::LgRecovery::recover(folder.c_str());
    std::cout << result.processes << " processes, " << result.messages << " messages recovered, "
              << result.lost << " told as lost\n";
    for (const std::string& problem : result.problems)
        std::cerr << "kr-log: " << problem << '\n';
    return result.problems.empty() ? 0 : 1;
}

int run(const Arguments& arguments)
{
    switch (arguments.command)
    {
    case Arguments::help:
        std::cout << Arguments::getHelp();
        break;
    case Arguments::version:
        std::cout << "kr-log " << Kr::getVersionText() << '\n';
        break;
    case Arguments::summary:
        sumUp(arguments);
        break;
    case Arguments::recover:
        return recover(arguments.files.front());
    case Arguments::show:
        show(arguments);
        break;
    }
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    std::ios::sync_with_stdio(false);
    try
    {
        return run(Arguments::read(argc, argv));
    }
    catch (const KrLog::UsageError& error)
    {
        std::cerr << "kr-log: " << error.what() << ". See kr-log --help.\n";
        return 2;
    }
    catch (const std::exception& error)
    {
        std::cerr << "kr-log: " << error.what() << '\n';
        return 1;
    }
}

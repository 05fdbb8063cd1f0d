#include <base/testMgr.h>

#include <base/inContextAliasMgrBase.h>
#include <base/inInitGuard.h>
#include <base/inSettings.h>
#include <base/internal/testing/testRunner.h>

#include <exception>
#include <iostream>

namespace Kr
{

namespace
{

constexpr int notRun = 2;

int runRemainingWords()
{
    const Vector<char*> words = InContextAliasMgrBase::getRemainingWords();
    return TestMgr::run({words.begin() + (words.empty() ? 0 : 1), words.end()});
}

int explain(const char* reason)
{
    std::cerr << reason << '\n';
    return notRun;
}

} // namespace

int TestMgr::main(int argc, char** argv)
{
    try
    {
        if (InSettings::answerHelp(argc, argv, std::cout))
        {
            TestOptions::printHelp(std::cout);
            return 0;
        }
        const InInitGuard guard(argc, argv);
        return runRemainingWords();
    }
    catch (const ExBase& error)
    {
        return explain(error.getReason());
    }
    catch (const std::exception& error)
    {
        return explain(error.what());
    }
}

int TestMgr::run(const std::vector<std::string>& words)
{
    const TestOptions options = TestOptions::parse(words);
    TestRunner runner(options);
    if (!options.results.isEmpty())
    {
        runner.serve();
        return 0;
    }
    const auto tests =
        TestSelection::select(TestCase::getAll(), options.patterns, options.exclusions);
    if (!options.doesList)
        return runner.run(tests) ? 0 : 1;
    for (const TestCase* test : tests)
        std::cout << test->getFullName() << '\n';
    return 0;
}

OsFilePath TestMgr::getFile(const std::string& name)
{
    return TestOptions::locate(name);
}

} // namespace Kr

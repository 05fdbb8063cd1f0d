#include <base/internal/testing/testIsolation.h>

#include <base/internal/testing/testRecord.h>
#include <base/internal/testing/testWords.h>
#include <base/osFile.h>
#include <base/osFileReader.h>
#include <base/osFileWriter.h>

#include <chrono>
#include <iostream>
#include <numeric>

namespace Kr
{

namespace
{

constexpr int shownLines = 20;

const OsFileTypes::Permissions forTheUserAlone(3, 0, 0);

/// A new file among the temporary ones, which is removed at the end.
class ScratchFile
{
public:
    ScratchFile()
        : _path(getName())
    {
        OsFileWriter(_path, forTheUserAlone, true).close();
    }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;
    ~ScratchFile()
    {
        try
        {
            OsFile(_path).remove();
        }
        catch (const ExBase&) // which the trace has seen
        {
        }
    }

    const OsFilePath& getPath() const { return _path; }

    std::string read() const
    {
        OsFileReader reader(_path);
        std::string text;
        char block[4096];
        while (const unsigned long count = reader.read(block, sizeof block))
            text.append(block, count);
        return text;
    }

private:
    static OsFilePath getName()
    {
        static unsigned count = 0;
        const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
        return OsFilePath::getTempDir().getString() + "KRtest-" +
               std::to_string(OsProcess::getCurrentId()) + '-' + std::to_string(++count) + '-' +
               std::to_string(now) + ".txt";
    }

    const OsFilePath _path;
};

/// This program with its own arguments, and the file for the results.
OsCommand makeCommand(const OsFilePath& results)
{
    OsCommand command(OsProcess::getCurrentProgram());
    command.addArgument("--results=" + results.getString());
    const std::vector<std::string> own = OsProcess::getCurrentArguments();
    for (std::size_t i = 1; i < own.size(); ++i)
        command.addArgument(own[i]);
    return command.mergeErrors();
}

std::string joinNames(const TestIsolation::Tests& tests)
{
    std::string names;
    for (const TestCase* test : tests)
        names += test->getFullName() + '\n';
    return names;
}

/// The last lines of a text.
std::string getTail(const std::string& text)
{
    std::size_t begin = text.size();
    for (int i = 0; i <= shownLines && begin != std::string::npos; ++i)
        begin = begin == 0 ? std::string::npos : text.rfind('\n', begin - 1);
    return text.substr(begin == std::string::npos ? 0 : begin + 1);
}

} // namespace

TestIsolation::TestIsolation(double seconds)
    : _seconds(seconds)
{
}

void TestIsolation::perform(const Tests& tests, const ResultSink& takeResult,
                            const OutputSink& takeOutput)
{
    for (Tests rest = tests; !rest.empty();)
    {
        Run run = start(rest);
        takeEnd(rest, run);
        bool goesOn = true;
        for (auto result = run.results.begin(); goesOn && result != run.results.end(); ++result)
            goesOn = takeResult(*result);
        takeOutput(run.process.output);
        if (!goesOn)
            return;
        rest.erase(rest.begin(), rest.begin() + static_cast<std::ptrdiff_t>(run.results.size()));
    }
}

TestIsolation::Run TestIsolation::start(const Tests& tests) const
{
    const ScratchFile file;
    Run run;
    const auto begin = std::chrono::steady_clock::now();
    run.process = OsProcess::run(makeCommand(file.getPath()), joinNames(tests), _seconds);
    run.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    run.results = TestRecord::read(file.read());
    return run;
}

/// Without a result the process has ended in the first test that has none; otherwise its end, if it
/// is a bad one, is put down to the last test.
void TestIsolation::takeEnd(const Tests& tests, Run& run) const
{
    if (run.results.size() == tests.size() && run.process.status.isSuccess())
        return;
    if (run.results.size() < tests.size())
    {
        const auto add = [](double sum, const TestResult& result) { return sum + result.seconds; };
        TestResult unfinished;
        unfinished.seconds =
            run.seconds - std::accumulate(run.results.begin(), run.results.end(), 0., add);
        run.results.push_back(unfinished);
    }
    const TestCase& test = *tests[run.results.size() - 1];
    TestResult& result = run.results.back();
    result.group = test.getGroupName();
    result.name = test.getName();
    result.state = TestResult::Failed;
    result.failures.push_back({TestFailure::End, test.getFile(), test.getLine(), describeEnd(run)});
}

std::string TestIsolation::describeEnd(const Run& run) const
{
    const OsProcess::Result& process = run.process;
    std::string text = "The test's process has ended: " + process.status.getText();
    if (process.ending == OsProcess::TimeOver)
        text = "The test's process was ended after " + TestWords::describeTime(_seconds);
    const std::string tail = TestWords::indent(getTail(process.output), "  ");
    return tail.empty() ? text : text + "\nits last lines:\n" + tail.substr(0, tail.size() - 1);
}

void TestIsolation::serve(const OsFilePath& path, const Performer& perform, bool stopsAtFailure)
{
    OsFileWriter writer(path, forTheUserAlone, false);
    const Tests all = TestCase::getAll();
    for (std::string name; std::getline(std::cin, name);)
    {
        const TestResult result = perform(TestSelection::find(all, name));
        const std::string record = TestRecord::write(result);
        writer.write(record.data(), static_cast<unsigned long>(record.size()));
        if (stopsAtFailure && result.state == TestResult::Failed)
            return;
    }
}

} // namespace Kr

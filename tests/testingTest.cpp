// Runs a small program of tests, and reads what it reports.

#include "fileFolder.h"
#include "handleCount.h"

#include <base/osProcess.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <regex>
#include <string>
#include <vector>

namespace
{

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using Words = std::vector<std::string>;

MATCHER_P(Finds, pattern, "") // the framework's own differs between systems
{
    return std::regex_search(arg, std::regex(pattern));
}

class TestingTest : public testing::Test
{
protected:
    Kr::OsProcess::Result run(const Words& words) const
    {
        Kr::OsCommand command("test_testing_child", words);
        command.changeVariable("KR_TEST_DIR", _folder.getPath().string());
        command.changeVariable("KR_LOG_DIR", _folder.getPath().string());
        auto result = Kr::OsProcess::run(command, {}, 120.);
        for (std::string* text : {&result.output, &result.errors}) // line ends are the system's
            text->erase(std::remove(text->begin(), text->end(), '\r'), text->end());
        return result;
    }

    FileFolder _folder;
};

TEST_F(TestingTest, WhatIsRunAndHowItEnds)
{
    const struct
    {
        Words words;
        unsigned status;
        std::string output;
    } cases[] = {
        {{"good"}, 0, "\n2 passed, 0 failed; 9 checks in "},
        {{"--list", "*s.s*"}, 0, "^ends.skipped\nends.standard\nvalues.shown\n$"},
        {{"--list", "good", "-*.threads"}, 0, "^good.conditions\n$"},
        {{"good.c*", "library.ends"}, 1, "ok      good.conditions[^]*FAILED  library.ends"},
        {{"ends.required", "ends.skipped"}, 1, "0 passed, 1 failed, 1 skipped; 2 checks"},
        {{"--stop", "ends"}, 1, "stopped at the first failure; 4 tests not run"},
        {{"--repeat=3", "good.threads"}, 0, "3 tests in 3 rounds\n[^]*3 passed"},
        {{"ends.skiped"}, 2, "No test is called 'ends.skiped'; the nearest are 'ends.skipped'"},
        {{"good", "-nothing"}, 2, "No test is called 'nothing'"},
        {{"good", "-good"}, 2, "There are no tests to run"},
        {{"--isolated"}, 2, "There is no option '--isolated'; the nearest are '--isolate'"},
        {{"--repeat=0"}, 2, "The option --repeat needs a number from 1 on"},
        {{"--limit"}, 2, "The option --limit needs a value"},
        {{"--list=yes"}, 2, "The option --list needs no value"},
        {{"--leaks=often"}, 2, "The option --leaks needs off, report or fail"},
        {{"--tests=missing"}, 2, "The file '[^']*missing' cannot be used: "},
        {{"good", "--junit=missing/it.xml"}, 2, "The file '[^']*it.xml' cannot be used: "},
    };
    for (const auto& each : cases)
    {
        SCOPED_TRACE(testing::PrintToString(each.words));
        const auto result = run(each.words);
        EXPECT_EQ(result.status.getCode(), each.status) << result.output;
        EXPECT_THAT(result.output + result.errors, Finds(each.output));
    }
}

TEST_F(TestingTest, AFailedCheckShowsBothValues)
{
    const std::string output = run({"values"}).output;
    for (const char* const pair :
         {"(1 == 2U)\n        left:  1\n        right: 2\n", "left:  'a'\n        right: '\\n'\n",
          "left:  0.1\n        right: 0.1\n", "left:  \"tab\\t\"\n        right: \"tab\"\n",
          "left:  null\n        right: \"text\"\n", "left:  [\"a\"]\n        right: [\"a\"]\n",
          "left:  7\n        right: 7\n", "left:  (Opaque)\n        right: (Opaque)\n",
          "left:  1\n        right: nan\n        apart: nan\n",
          "std::out_of_range)\n        instead: std::invalid_argument: stoi\n",
          "(1 + 1, int)\n        nothing was raised\n"})
        EXPECT_THAT(output, HasSubstr(pair));
    EXPECT_THAT(output, Finds("testingChild.cpp:[0-9]+: KR_CHECK"));
}

TEST_F(TestingTest, WhatEndsATest)
{
    const std::string output = run({"ends"}).output;
    EXPECT_THAT(output, AllOf(HasSubstr("KR_REQUIRE(2 > 3)"), Not(HasSubstr("behind the end")),
                              Finds("skipped ends.skipped  [0-9.]+ ms: no device\n")));
    EXPECT_THAT(output, Finds("testingChild.cpp:[0-9]+: Kr::ExInternalError: first\n"
                              "        second\n"
                              "        behind the check at .*testingChild.cpp:[0-9]+\n"
                              "        note: outer\n"
                              "        note: inner 3\n"));
    EXPECT_THAT(output, AllOf(Finds("    std::out_of_range: .*\n"
                                    "        before the first check of "),
                              HasSubstr("    an exception of the type int\n")));
}

TEST_F(TestingTest, AnIsolatedProcessCostsOneTest)
{
    const auto result =
        run({"--isolate", "--junit=report.xml", "processes", "-processes.hangs", "good"});
    EXPECT_EQ(result.status.getCode(), 1U);
    EXPECT_THAT(result.output,
                AllOf(HasSubstr("ok      good.threads"), HasSubstr("ok      processes.before"),
                      HasSubstr("The test's process has ended: illegal instruction"),
                      HasSubstr("its last lines:\n          "),
                      HasSubstr("The test's process has ended: exit status 0"),
                      HasSubstr("The test's process has ended: exit status 3"),
                      HasSubstr("3 passed, 3 failed")));
    const std::string report = FileFolder::read(_folder / "report.xml");
    EXPECT_THAT(report, AllOf(Finds("name=\"processes\" .* tests=\"4\" failures=\"0\" "
                                    "errors=\"3\" skipped=\"0\""),
                              HasSubstr("last words &lt;&amp;&gt; \\x01\\xff"),
                              HasSubstr("</testsuites>")));
    EXPECT_THAT(run({"--isolate", "--limit=2", "processes.hangs"}).output,
                HasSubstr("The test's process was ended after 2.00 s"));
    EXPECT_THAT(run({"--isolate", "--stop", "ends"}).output,
                HasSubstr("0 passed, 1 failed; 2 checks"));
}

TEST_F(TestingTest, FilesNameTests)
{
    std::ofstream(_folder / "some.txt") << "# the good ones\ngood.*  -good.threads # slow\n\nends\n"
                                        << "-ends.s*";
    EXPECT_EQ(run({"--list", "--tests=some.txt", "-ends.number"}).output,
              "ends.required\nends.library\ngood.conditions\n");
}

TEST_F(TestingTest, TheSeedGivesTheOrderAgain)
{
    const std::string first = run({"--tap", "--shuffle", "good", "ends"}).output;
    const std::size_t seed = first.find("--shuffle=");
    ASSERT_NE(seed, std::string::npos) << first;
    const Words again = {"--tap", first.substr(seed, first.find('\n', seed) - seed), "ends",
                         "good"};
    const auto getOrder = [](const std::string& tap)
    {
        std::string order;
        for (std::size_t at = 0; (at = tap.find("ok ", at)) != std::string::npos; ++at)
            order += tap.substr(at, tap.find('\n', at) - at) + '\n';
        return order;
    };
    EXPECT_EQ(getOrder(first), getOrder(run(again).output));
    EXPECT_THAT(first, AllOf(HasSubstr("TAP version 14\n1..7\n"),
                             Finds("\nok [1-7] - ends.skipped # SKIP no device\n"),
                             Finds("\nnot ok [1-7] - ends.number\n  ---\n"
                                   "  duration_ms: [0-9]+\n  message: \\|2\n"
                                   "    an exception of the type int\n")));
}

TEST_F(TestingTest, LeaksAndMessages)
{
    // Wine does not count handles.
    const std::string left = std::string("[0-9]+ blocks? of [0-9]+ bytes") +
                             (HandleCount::get() > 0 ? ", 1 handle" : "");
    const auto reported = run({"resources"});
    EXPECT_THAT(reported.output, AllOf(Finds("ok      resources.handle .*leaves " + left + "\n"),
                                       HasSubstr("    log: Warning Scene: no light\n")));
    EXPECT_TRUE(std::filesystem::exists(_folder / "forgotten"));
    EXPECT_THAT(run({"resources.handle", "--leaks=fail"}).output,
                Finds("FAILED  resources.handle[^]*It leaves behind " + left + "\\."));
    EXPECT_THAT(run({"resources.handle", "--leaks=off"}).output, Not(HasSubstr("leaves")));
    EXPECT_THAT(run({"resources.message", "--testing.messages"}).errors,
                HasSubstr("log: Warning Scene: no light\n"));
    EXPECT_EQ(reported.errors, "");
}

} // namespace

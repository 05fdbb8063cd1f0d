// Counts the words of the files on its command line with several threads, and shows what the
// logger makes of it: events.log, prof.log, a table of profiles, and a timeline.
//
//     KR_LOG_DIR=/tmp/logs KR_LOG_TIMELINE=timeline.json wordcount docs/*.md

#include <base/hwIntervalTimer.h>
#include <base/inInitGuard.h>
#include <base/lgTimeline.h>
#include <base/log.h>
#include <base/profConsolidator.h>
#include <base/profScope.h>
#include <base/profiler.h>

#include <algorithm>
#include <atomic>
#include <cctype>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <string>
#include <thread>
#include <vector>

namespace
{

using WordProfiler = Kr::Profiler<Kr::HwIntervalTimer>;
using Counts = std::map<std::string, int>;

constexpr std::size_t longWord = 40;

/// What one thread counts, and how long that took it.
struct Worker
{
    Counts counts;
    WordProfiler reading{"read a file"};
    WordProfiler counting{"count its words"};
};

bool readText(const std::string& path, Worker& worker, std::string& text)
{
    const Kr::ProfCycle cycle(worker.reading);
    std::ifstream file(path, std::ios::binary);
    text.assign(std::istreambuf_iterator<char>(file), {});
    return file.good() || file.eof();
}

bool isLetter(char c)
{
    return std::isalpha(static_cast<unsigned char>(c)) != 0;
}

/// Returns how many words there are.
int countWords(const Kr::LgMinorGroup& group, const std::string& text, Worker& worker)
{
    const Kr::ProfCycle cycle(worker.counting);
    int total = 0;
    auto at = std::find_if(text.begin(), text.end(), isLetter);
    while (at != text.end())
    {
        const auto end = std::find_if_not(at, text.end(), isLetter);
        std::string word(at, end);
        if (word.size() > longWord)
            KR_LOG(group, Warning) << "a word of " << static_cast<unsigned int>(word.size())
                                   << " letters: " << word.substr(0, longWord).c_str() << "...";
        ++worker.counts[std::move(word)];
        ++total;
        at = std::find_if(end, text.end(), isLetter);
    }
    return total;
}

void countFile(const Kr::LgMinorGroup& group, const std::string& path, Worker& worker)
{
    KR_LOG(group, Tracing) << "opening " << path.c_str();
    std::string text;
    if (!readText(path, worker, text))
    {
        KR_LOG(group, Error) << "cannot read " << path.c_str();
        return;
    }
    const double before = worker.counting.totalTime();
    const int words = countWords(group, text, worker);
    const double milliseconds = (worker.counting.totalTime() - before) * 1e3;
    KR_LOG(group, Informational) << path.c_str() << ": " << words << " words";
    KR_LOG(group, Profiling) << path.c_str() << ": " << static_cast<unsigned int>(text.size())
                             << " bytes in " << milliseconds << " ms";
}

void showResult(const std::vector<Worker>& workers)
{
    Counts counts;
    for (const Worker& worker : workers)
        for (const auto& [word, count] : worker.counts)
            counts[word] += count;
    std::vector<std::pair<int, std::string>> ranking;
    for (const auto& [word, count] : counts)
        ranking.emplace_back(-count, word);
    std::sort(ranking.begin(), ranking.end());
    std::cout << counts.size() << " different words, most of all:";
    for (std::size_t i = 0; i < std::min<std::size_t>(5, ranking.size()); ++i)
        std::cout << ' ' << ranking[i].second << " (" << -ranking[i].first << ')';
    std::cout << "\n\n";
}

void showProfiles(std::vector<Worker>& workers)
{
    Kr::ProfConsolidator reading;
    Kr::ProfConsolidator counting;
    for (Worker& worker : workers)
    {
        if (worker.reading.cycles() == 0)
            continue; // it would pull the minimum down to 0
        reading.consolidate(worker.reading);
        counting.consolidate(worker.counting);
    }
    std::cout << "Reading, all threads. " << reading << "Counting, all threads. " << counting;
}

} // namespace

int main(int argc, char** argv)
{
    const std::vector<std::string> files(argv + std::min(argc, 1), argv + argc);
    const char* const* arguments = argv;
    const Kr::InInitGuard guard(argc, arguments);

    // What the environment says of the group (KR_LOG_GROUPS) comes on top of this.
    Kr::LgMajorGroup& major = Kr::LgMajorGroup::getInstanceForName("WordCount");
    major.setLogThreshold(Kr::LgTypes::Tracing, false);
    major.setLogThreshold(Kr::LgTypes::Profiling, false);
    const Kr::LgMinorGroup group(major, "WordCount");

    const unsigned int cores = std::max(2U, std::thread::hardware_concurrency());
    std::vector<Worker> workers(std::min(cores, 8U));
    KR_LOG(group, Informational) << "counting " << static_cast<unsigned int>(files.size())
                                 << " files with " << static_cast<unsigned int>(workers.size())
                                 << " threads";
    std::atomic<std::size_t> next{0};
    std::vector<std::thread> threads;
    for (Worker& worker : workers)
        threads.emplace_back(
            [&]
            {
                for (std::size_t i = next++; i < files.size(); i = next++)
                    countFile(group, files[i], worker);
            });
    for (std::thread& thread : threads)
        thread.join();

    showResult(workers);
    showProfiles(workers);
    KR_LOG(group, Informational) << "done";
    Kr::LgLog::flush();
    std::cout << "The log is in " << Kr::LgLog::getDirectory() << '\n';
    if (Kr::LgTimeline::isEnabled())
        std::cout << "The timeline, for ui.perfetto.dev, is in " << Kr::LgLog::getTimelinePath()
                  << '\n';
    return 0;
}

#include <base/internal/log/lgWritten.h>

#include <base/internal/log/lgLogMark.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <string_view>
#include <system_error>
#include <unordered_map>

namespace Kr
{

namespace
{

constexpr int maxRotated = 999;
/// Behind a mark stands what the process wrote between two commits, and what others did then.
constexpr std::uint64_t maxSearched = 64 * 1024 * 1024;

std::string getName(const std::string& path, int number)
{
    return number == 0 ? path : path + '.' + std::to_string(number);
}

bool isFile(const std::string& path)
{
    std::error_code error;
    return std::filesystem::is_regular_file(path, error);
}

/// What a line is known by. Behind its number, a line of lost messages may say more of them.
std::string_view getKey(std::string_view line)
{
    const std::size_t loss = line.find("Event overflow [");
    return loss == line.npos ? line : line.substr(0, line.find(']', loss));
}

/// Meets the lines of a log one by one, and finds those that are expected.
class Search
{
public:
    explicit Search(const std::vector<LgWritten::Line>& lines)
        : _lines(lines)
        , _found(lines.size(), false)
    {
        for (std::size_t i = 0; i < lines.size(); ++i)
            _queues[lines[i].queue].push_back(i);
        for (auto& [queue, numbers] : _queues)
        {
            std::reverse(numbers.begin(), numbers.end()); // the next one is the last
            expectNext(numbers);
        }
    }

    void meet(std::string_view text)
    {
        const auto expected = _expected.find(getKey(text));
        if (expected == _expected.end())
            return;
        const std::size_t number = expected->second;
        _expected.erase(expected);
        _found[number] = true;
        ++_count;
        std::vector<std::size_t>& numbers = _queues[_lines[number].queue];
        numbers.pop_back();
        expectNext(numbers);
    }

    bool isDone() const { return _expected.empty(); }
    std::size_t getCount() const { return _count; }
    std::vector<bool> take() { return std::move(_found); }

private:
    void expectNext(const std::vector<std::size_t>& numbers)
    {
        if (!numbers.empty())
            _expected.emplace(getKey(_lines[numbers.back()].text), numbers.back());
    }

    const std::vector<LgWritten::Line>& _lines;
    std::vector<bool> _found;
    std::size_t _count = 0;
    std::map<std::uint32_t, std::vector<std::size_t>> _queues;
    std::unordered_multimap<std::string_view, std::size_t> _expected; ///< one of each queue
};

void searchFile(Search& search, const std::string& path, std::uint64_t from)
{
    if (!isFile(path))
        return;
    std::ifstream file(path, std::ios::binary);
    file.seekg(static_cast<std::streamoff>(from));
    std::uint64_t size = 0;
    for (std::string line; size < maxSearched && !search.isDone() && std::getline(file, line);
         size += line.size())
        search.meet(file.eof() ? line : line += '\n');
}

void searchLog(Search& search, const std::string& path, const LgRingFormat::FileMark& mark)
{
    int oldest = 0;
    while (oldest < maxRotated && isFile(getName(path, oldest + 1)))
        ++oldest;
    std::uint64_t from = 0;
    for (int number = 0; number <= oldest; ++number)
        if (LgLogMark::isSameFile(LgLogMark::find(getName(path, number)), mark))
        {
            oldest = number;
            from = mark.size;
        }
    for (int number = oldest; number >= 0; --number, from = 0)
        searchFile(search, getName(path, number), from);
}

} // namespace

std::vector<bool> LgWritten::find(const std::vector<Line>& lines, const std::string& path,
                                  const std::string& ownPath, const LgRingFormat::LogMark& mark)
{
    Search search(lines);
    searchLog(search, path, mark.shared);
    const std::size_t inShared = search.getCount();
    searchLog(search, ownPath, mark.own);
    if (search.getCount() != inShared) // the process may have come back from there
        searchLog(search, path, mark.shared);
    return search.take();
}

} // namespace Kr

#include <base/internal/errors/nearestNames.h>

#include <algorithm>

namespace Kr
{

namespace
{

constexpr std::size_t longest = 256; // nobody means a name by a longer text
constexpr std::size_t mostShown = 3;

std::string toComparable(std::string_view text)
{
    return toSmallLetters(text.substr(0, longest));
}

struct Candidate
{
    std::size_t distance;
    std::string_view name;
};

std::size_t rank(const std::string& text, std::string_view name)
{
    const std::string small = toComparable(name);
    const bool isPart = !text.empty() && !small.empty() &&
                        (small.find(text) != small.npos || text.find(small) != text.npos);
    return isPart ? 0 : getEditDistance(text, small);
}

} // namespace

std::string toSmallLetters(std::string_view text)
{
    std::string result(text);
    for (char& c : result)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return result;
}

std::size_t getEditDistance(std::string_view a, std::string_view b)
{
    Vector<Vector<std::size_t>> distance(a.size() + 1, Vector<std::size_t>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i)
        for (std::size_t j = 0; j <= b.size(); ++j)
        {
            std::size_t& best = distance[i][j];
            best = std::max(i, j); // right where one text is empty, too much elsewhere
            if (i == 0 || j == 0)
                continue;
            best = std::min(best, distance[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1));
            best = std::min({best, distance[i - 1][j] + 1, distance[i][j - 1] + 1});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                best = std::min(best, distance[i - 2][j - 2] + 1);
        }
    return distance[a.size()][b.size()];
}

std::string quoteNearest(std::string_view text, const Vector<std::string>& names)
{
    const std::string small = toComparable(text);
    Vector<Candidate> candidates;
    for (const std::string& name : names)
        candidates.push_back({rank(small, name), name});
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const Candidate& a, const Candidate& b)
                     { return a.distance < b.distance; });
    candidates.resize(std::min(candidates.size(), mostShown));
    std::string quoted;
    for (const Candidate& candidate : candidates)
        quoted.append(quoted.empty() ? "'" : ", '").append(candidate.name).append("'");
    return quoted;
}

} // namespace Kr

#include <base/internal/errors/wildcards.h>

#include <cstddef>

namespace Kr
{

bool fitsWildcards(std::string_view pattern, std::string_view text)
{
    // Where the text fails behind a "*", that one takes a character more; those before it need not
    // be tried again.
    std::size_t star = std::string_view::npos; // the newest one, which takes what stands before
    std::size_t taken = 0;                     // this place of the text
    std::size_t p = 0;
    for (std::size_t t = 0; t < text.size();)
    {
        if (p < pattern.size() && pattern[p] == '*')
        {
            star = p++;
            taken = t;
        }
        else if (p < pattern.size() && pattern[p] == text[t])
        {
            ++p;
            ++t;
        }
        else if (star != std::string_view::npos)
        {
            p = star + 1;
            t = ++taken;
        }
        else
            return false;
    }
    return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

} // namespace Kr

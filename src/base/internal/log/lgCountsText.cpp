#include <base/internal/log/lgCountsText.h>

#include <cstdio>

namespace Kr
{

std::string_view LgCountsText::write(char (&text)[size], const char* introduction,
                                     const Counts& counts)
{
    int length = std::snprintf(text, size, "%.150s", introduction);
    const char* separator = ": ";
    for (unsigned int level = 0; level < counts.size(); ++level)
    {
        if (counts[level] == 0)
            continue;
        const auto at = static_cast<std::size_t>(length);
        length += std::snprintf(text + at, size - at, "%s%lu %s", separator,
                                static_cast<unsigned long>(counts[level]),
                                LgTypes::getLevelName(static_cast<LgTypes::Level>(level)));
        separator = ", ";
    }
    return {text, static_cast<std::size_t>(length)};
}

} // namespace Kr

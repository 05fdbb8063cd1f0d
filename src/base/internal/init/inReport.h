#pragma once

/// @file
/// Internal to the initialisation framework: reports.

#include <locale>
#include <ostream>
#include <sstream>
#include <string>

namespace Kr
{

/// A text that is made apart from the stream that takes it, so that neither the caller's format
/// settings nor its locale play a part.
class InReport : public std::ostringstream
{
public:
    InReport() { imbue(std::locale::classic()); }

    std::ostream& writeTo(std::ostream& os) const
    {
        const std::string text = str();
        return os.write(text.data(), static_cast<std::streamsize>(text.size()));
    }
};

} // namespace Kr

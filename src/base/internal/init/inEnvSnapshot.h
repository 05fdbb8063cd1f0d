#pragma once

/// @file
/// Internal to the initialisation manager: the environment as it was at the start.

#include <iosfwd>
#include <map>
#include <string>

namespace Kr
{

class InEnvSnapshot
{
public:
    /// Copies a null-terminated block of "NAME=value" texts; a null block is empty. The first entry
    /// of a name counts. Entries without "=" are reported and skipped.
    InEnvSnapshot(const char* const* block, std::ostream& errors);

    /// The value, or null when the name is null or absent. Case matters.
    const char* get(const char* name) const;

private:
    std::map<std::string, std::string, std::less<>> _values;
};

} // namespace Kr

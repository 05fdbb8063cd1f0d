#pragma once

/// @file
/// Internal to the initialisation framework: the environment as it was at the start.

#include <iosfwd>
#include <map>
#include <string>

namespace Kr
{

class InEnvSnapshot
{
public:
    /// The environment of the process at the first call, which the manager makes when it is built.
    static const InEnvSnapshot& getInstance();

    /// Copies a null-terminated block of "NAME=value" texts; a null block is empty. The first entry
    /// of a name counts. Entries without "=" are reported and skipped.
    InEnvSnapshot(const char* const* block, std::ostream& errors);

    /// The value, or null when the name is null or absent. Case matters.
    const char* get(const char* name) const;

private:
    std::map<std::string, std::string, std::less<>> _values;
};

} // namespace Kr

#include <base/internal/init/inEnvSnapshot.h>

#include <base/osEnv.h>

#include <ios>
#include <iostream>
#include <string_view>

namespace Kr
{

const InEnvSnapshot& InEnvSnapshot::getInstance()
{
    static const std::ios_base::Init
        streams; // maybe none of this library's own objects is built yet
    static const InEnvSnapshot snapshot(OsEnv::getBlock(), std::cerr);
    return snapshot;
}

InEnvSnapshot::InEnvSnapshot(const char* const* block, std::ostream& errors)
{
    for (; block != nullptr && *block != nullptr; ++block)
    {
        const std::string_view entry(*block);
        const std::size_t equals = entry.find('=');
        if (equals == std::string_view::npos)
            errors << "Skipping over Environment Variable: " << entry << std::endl;
        else
            _values.emplace(entry.substr(0, equals), entry.substr(equals + 1));
    }
}

const char* InEnvSnapshot::get(const char* name) const
{
    if (name == nullptr)
        return nullptr;
    const auto found = _values.find(std::string_view(name));
    return found != _values.end() ? found->second.c_str() : nullptr;
}

} // namespace Kr

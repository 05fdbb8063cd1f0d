#include <base/internal/log/lgProgram.h>

#include <platform/anyProcess.h>

namespace Kr
{

std::string LgProgram::getName()
{
    std::string name = krGetProgramPath();
    name.erase(0, name.find_last_of("/\\") + 1);
    constexpr std::size_t length = 4;
    if (name.size() > length && name.compare(name.size() - length, length, ".exe") == 0)
        name.resize(name.size() - length);
    return name;
}

} // namespace Kr

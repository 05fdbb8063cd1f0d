// Processes that write to one key at the same time.

#include "scenario.h"

#include <scratchKey.h>

#include <cstdlib>
#include <thread>

namespace
{

using Kr::OsRegistryKey;

constexpr int valueCount = 100;
constexpr const char* keyVariable = "KR_STORE_TEST_KEY";
std::string ownPath;

/// Runs a case in a process of its own; returns its status.
int start(const std::string& name)
{
    const std::string quote = ownPath.find(' ') == std::string::npos ? "" : "\"";
    return std::system((quote + ownPath + quote + ' ' + name).c_str());
}

std::string getKey()
{
    const char* const key = Kr::OsEnv::getVariable(keyVariable);
    return key != nullptr ? key : "";
}

/// Each writer has values of its own, and one that both write.
void write(char letter)
{
    OsRegistryKey key(OsRegistryKey::Root::User, getKey().c_str(), OsRegistryKey::Mode::Create);
    for (int i = 0; i < valueCount; ++i)
    {
        key.setInteger32((letter + std::to_string(i)).c_str(), i);
        key.setText("contested", std::string(1000, letter));
        const std::string found = key.getText("contested");
        SCENARIO_CHECK(found == std::string(1000, found.front()));
    }
}

void writeA()
{
    write('a');
}

void writeB()
{
    write('b');
}

void twoProcesses()
{
    const ScratchKey scratch;
    Kr::OsEnv::putVariable((std::string(keyVariable) + '=' + scratch.getPath()).c_str());
    std::thread other([] { SCENARIO_CHECK(start("writeA") == 0); });
    SCENARIO_CHECK(start("writeB") == 0);
    other.join();
    const OsRegistryKey key = scratch.open(OsRegistryKey::Mode::Read);
    SCENARIO_CHECK(key.listValues().size() == 2 * valueCount + 1);
    for (int i = 0; i < valueCount; ++i)
        for (const char letter : {'a', 'b'})
            SCENARIO_CHECK(key.getInteger32((letter + std::to_string(i)).c_str()) == i);
}

} // namespace

int main(int argc, char** argv)
{
    ownPath = argv[0];
    return Scenario::run({{"twoProcesses", twoProcesses}, {"writeA", writeA}, {"writeB", writeB}},
                         argc, argv);
}

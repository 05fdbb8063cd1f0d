// Settings that outlast their process, and processes that write at the same time.

#include "scenario.h"

#include <scratchKey.h>

#include <base/inInit.imp>
#include <base/inInitGuard.h>
#include <base/inVariable.h>
#include <base/krInitPackages.h>
#include <base/osSettingsStore.h>

#include <cstdlib>
#include <thread>

namespace KrInit
{

struct viewer
{
    static constexpr const char* name = "viewer";
    using Dependencies = Kr::InDependencies<base>;
    static void start() {}
    static void stop() {}
};

} // namespace KrInit

template class Kr::InInit<KrInit::viewer>;

namespace
{

using Kr::OsRegistryKey;

Kr::InInit<KrInit::viewer> viewerPackage;
Kr::InVariable<std::int32_t> samples(viewerPackage, "viewer.samples", 4, "", {1, 64});

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

void passOn(const ScratchKey& scratch)
{
    Kr::OsEnv::putVariable((std::string(keyVariable) + '=' + scratch.getPath()).c_str());
}

void run(const char* option, int expected)
{
    const Kr::OsSettingsStore store(getKey().c_str());
    const char* const words[] = {"program", option};
    const char* const* arguments = words;
    int count = 2;
    const Kr::InInitGuard guard(count, arguments);
    SCENARIO_CHECK(samples.getValue() == expected);
    Kr::InSettings::store(viewerPackage);
}

void runWithOption()
{
    run("--viewer.samples=16", 16);
}

void runWithout()
{
    run("word", 16);
}

void laterRun()
{
    const ScratchKey scratch;
    passOn(scratch);
    SCENARIO_CHECK(start("runWithOption") == 0);
    SCENARIO_CHECK(start("runWithout") == 0);
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
    passOn(scratch);
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
    return Scenario::run({{"laterRun", laterRun},
                          {"runWithOption", runWithOption},
                          {"runWithout", runWithout},
                          {"twoProcesses", twoProcesses},
                          {"writeA", writeA},
                          {"writeB", writeB}},
                         argc, argv);
}

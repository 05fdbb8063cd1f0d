// A small application on the initialisation framework: packages that start in the order of their
// dependencies, settings from the command line and the environment, a service bound to its package.
//
//   startup --samples=8 --shading traced     STARTUP_SPHERES=9 startup     startup --help
//   startup --cycle                          what a start-up that cannot work looks like

#include "plugins.h"
#include "viewer.h"

#include <base/inContextAlias.h>
#include <base/inContextAliasMgrBase.h>
#include <base/inEx.h>
#include <base/inInit.imp>
#include <base/inInitMgr.h>
#include <base/inVariable.h>
#include <base/osEnv.h>
#include <base/trace.h>

#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace KrInit
{

struct application
{
    static constexpr const char* name = "application";
    using Dependencies = Kr::InDependencies<viewer>;
    static void start() {}
    static void stop() {}
};

} // namespace KrInit

template class Kr::InInit<KrInit::application>;

namespace
{

Kr::InInit<KrInit::application> package;

const Kr::InVariable<bool> cycle(package, "application.cycle", false,
                                 "Load two plug-ins that need each other");
const Kr::InContextAlias cycleAlias("application.cycle", "--cycle");

/// Shows each exception before it is raised.
class ConsoleTrace : public Kr::Trace
{
public:
    void printException(const Kr::ExBase& exception, const char*, int) noexcept override
    {
        std::cout << "about to be raised: " << exception.getDetailedReason() << '\n';
    }
};

/// Raises when a word that begins with two dashes was no option of any setting.
void rejectUnknownOptions()
{
    using namespace std::string_literals;
    for (const std::string_view word : Kr::InContextAliasMgrBase::getRemainingWords())
    {
        if (word == "--")
            return;
        if (word.substr(0, 2) == "--")
            throw std::invalid_argument("unknown option '"s.append(word) + "', see --help");
    }
}

void showStart()
{
    std::cout << "\nThe packages, in the order of their start:\n";
    Kr::InInitMgr::getInstance().reportStart(std::cout);

    std::cout << "\nThe settings and where they come from:\n";
    Kr::InVariableBase::dumpAll(std::cout);

    std::cout << "\nThe words that are left for the application:";
    for (const char* word : Kr::InContextAliasMgrBase::getRemainingWords())
        std::cout << " '" << word << "'";
    std::cout << '\n';
}

void showRaise()
{
    std::cout << "\nA raise:\n";
    ConsoleTrace trace;
    Kr::Trace& previous = Kr::TraceManager::getInstance().setTrace(trace);
    try
    {
        Scene::getInstance().find("teapot");
    }
    catch (const SceneEx& error)
    {
        std::cout << "caught: " << error.getReason() << '\n';
    }
    Kr::TraceManager::getInstance().setTrace(previous);
}

void run()
{
    if (Kr::InVariableBase::isHelpRequested())
        return Kr::InVariableBase::printHelp(std::cout);
    rejectUnknownOptions();
    showStart();
    showRaise();
    if (cycle.getValue())
        loadPlugins();
    std::cout << "\nThe stop, in the reverse order:" << std::endl;
    Kr::OsEnv::putVariable("KR_DEBUG_INITIALIZE=1"); // the framework names each step from here on
}

} // namespace

int main(int argc, char** argv)
{
    std::string failure;
    Kr::InInitMgr& manager = Kr::InInitMgr::getInstance();
    try
    {
        const char* const* arguments = argv;
        manager.initialize(argc, arguments);
        run();
    }
    catch (const Kr::InEx::ExDependencyCycle& error)
    {
        manager.reportCycles(std::cout);
        failure = error.getReason();
    }
    catch (const std::exception& error)
    {
        failure = error.what();
    }
    // Rather than an InInitGuard: this also stops what a failed start left up.
    manager.finalize();

    if (failure.empty())
        return EXIT_SUCCESS;
    std::cerr << "startup: " << failure << '\n';
    return EXIT_FAILURE;
}

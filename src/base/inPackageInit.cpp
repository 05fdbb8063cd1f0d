#include <base/inPackageInit.h>

#include <base/assert.h>
#include <base/inVariableBase.h>
#include <base/internal/init/inInitDebug.h>
#include <base/internal/init/inPackageRegistrar.h>
#include <base/internal/init/inPackageWatch.h>

#include <algorithm>
#include <cassert>
#include <chrono>
#include <cstring>
#include <iomanip>
#include <iostream>

namespace Kr
{

namespace
{

/// Stores how long its scope took, also when an exception leaves it.
class ScopeTimer
{
public:
    explicit ScopeTimer(double& milliseconds)
        : _milliseconds(milliseconds)
    {
    }
    ScopeTimer(const ScopeTimer&) = delete;
    ScopeTimer& operator=(const ScopeTimer&) = delete;
    ~ScopeTimer()
    {
        const std::chrono::duration<double, std::milli> time = Clock::now() - _begin;
        _milliseconds = time.count();
    }

private:
    using Clock = std::chrono::steady_clock;

    double& _milliseconds;
    Clock::time_point _begin = Clock::now();
};

} // namespace

InPackageInit::InPackageInit(const char* name)
{
    // The manager exists before the first package does, so that it also outlives them all.
    InPackageRegistrar::prepare();
    const std::size_t length = name != nullptr ? std::min(std::strlen(name), nameSize - 1) : 0;
    std::copy_n(name, length, _name);
    _name[length] = '\0';
}

InPackageInit::~InPackageInit()
{
    InPackageRegistrar::unregisterPackage(*this);
}

void InPackageInit::addDependency(InVariableBase* variable)
{
    KR_ASSERT(variable != nullptr);
    _variables.push_back(variable);
}

void InPackageInit::removeDependency(InVariableBase* variable)
{
    const auto found = std::find(_variables.begin(), _variables.end(), variable);
    const bool erased = found != _variables.end();
    assert(erased);
    if (erased)
        _variables.erase(found);
}

const char* InPackageInit::getName() const
{
    return _name;
}

void InPackageInit::initialize()
{
    reportStep("performInitialize");
    const InPackageWatch watch(getName(), true);
    _startTimes = StartTimes();
    try
    {
        initializeVariables();
        const ScopeTimer timer(_startTimes.start);
        performInitialize();
    }
    catch (...)
    {
        for (std::size_t i = _variables.size(); i-- > 0;)
            _variables[i]->abandon();
        throw;
    }
    setInitialized(true);
}

void InPackageInit::finalize()
{
    reportStep("performFinalize");
    const InPackageWatch watch(getName(), false);
    setInitialized(false);
    performFinalize();
    for (std::size_t i = _variables.size(); i-- > 0;)
        _variables[i]->finalize();
}

void InPackageInit::addDependency(const std::type_info* type)
{
    KR_ASSERT(type != nullptr);
    const bool isUp = InPackageRegistrar::isInitialized(*type);
    (isUp ? _metDependencies : _dependencies).push_back(type);
}

void InPackageInit::registerPackage()
{
    if (isInitDebugEnabled())
        std::cerr << "Registering Package: InInit<" << getName() << ">" << std::endl;
    InPackageRegistrar::registerPackage(*this);
}

void InPackageInit::initializeVariables()
{
    const ScopeTimer timer(_startTimes.variables);
    // By index: a variable may attach another one while it starts.
    for (std::size_t i = 0; i < _variables.size(); ++i)
        _variables[i]->initialize();
}

void InPackageInit::reportStep(const char* operation) const
{
    if (isInitDebugEnabled())
        std::cerr << std::setw(static_cast<int>(_dependencies.size())) << ""
                  << "InInit<" << getName() << ">::" << operation << "()" << std::endl;
}

} // namespace Kr

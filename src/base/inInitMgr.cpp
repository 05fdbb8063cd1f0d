#include <base/inInitMgr.h>

#include <base/assert.h>
#include <base/inContextAliasMgrBase.h>
#include <base/inEx.h>
#include <base/inVariableBase.h>
#include <base/internal/errors/invariant.h>
#include <base/internal/init/inCommandLine.h>
#include <base/internal/init/inEnvSnapshot.h>
#include <base/internal/init/inInitDebug.h>
#include <base/internal/init/inInitState.h>
#include <base/internal/init/inNameTable.h>
#include <base/internal/init/inPackageRegistrar.h>
#include <base/raise.h>

#include <algorithm>
#include <cassert>
#include <cstring>
#include <iostream>

namespace Kr
{

namespace
{

/// Raises with nothing done, or takes copies.
void takeOver(int argc, const char* const* argv)
{
    KR_ASSERT(argc >= 0);
    KR_ASSERT(argc == 0 || argv != nullptr);
    for (int i = 0; i < argc; ++i)
        KR_ASSERT(argv[i] != nullptr);
    InCommandLine::getInstance().append(argc, argv);
}

/// Sets a flag for its scope.
class ScopedFlag
{
public:
    explicit ScopedFlag(bool& flag)
        : _flag(flag)
        , _previous(flag)
    {
        _flag = true;
    }
    ScopedFlag(const ScopedFlag&) = delete;
    ScopedFlag& operator=(const ScopedFlag&) = delete;
    ~ScopedFlag() { _flag = _previous; }

private:
    bool& _flag;
    const bool _previous;
};

const std::type_info& typeOf(const InPackageInit& package)
{
    return typeid(package);
}

} // namespace

// The manager

InInitMgr& InInitMgr::getInstance()
{
    static InInitMgr manager;
    return manager;
}

InInitMgr::InInitMgr()
    : _state(new InInitState)
{
}

InInitMgr::~InInitMgr() = default;

void InInitMgr::initialize(int& argc, const char* const*& argv)
{
    takeOver(argc, argv);
    argc = 0;
    argv = nullptr;
    _state->initializeNewPackages();
}

void InInitMgr::initialize(int& argc, char**& argv)
{
    takeOver(argc, argv);
    argc = 0;
    argv = nullptr;
    _state->initializeNewPackages();
}

void InInitMgr::finalize()
{
    InVariableBase::clearPendingOverrides();
    InCommandLine::getInstance().release();
    assert(InContextAliasMgrBase::args().size() == 0); // NOLINT(readability-container-size-empty)
    if (!_state->_initCalled)
        raise<InEx::ExFinaliseBeforeInit>(KR_HERE);
    if (_state->_finalized)
        raise<InEx::ExDoubleFinalise>(KR_HERE);
    KR_ASSERT(!_state->_initializing);
    _state->stopPackages();
    _state->_finalized = true;
}

bool InInitMgr::isInitializing() const
{
    return _state->_initializing;
}

bool InInitMgr::isFinalizing() const
{
    return _state->_finalizing;
}

const char* InInitMgr::getEnv(const char* name)
{
    getInstance();
    return InEnvSnapshot::getInstance().get(name);
}

void InInitMgr::incReinitCount()
{
    ++_state->_reinitCount;
}

void InInitMgr::decReinitCount()
{
    --_state->_reinitCount;
    KR_INVARIANT_TEXT(_state->_reinitCount >= 0, "--_reinitCount >= 0", __LINE__);
    if (_state->_reinitCount == 0)
        _state->initializeNewPackages();
}

// What packages need of it

void InPackageRegistrar::prepare()
{
    InInitMgr::getInstance();
}

void InPackageRegistrar::registerPackage(InPackageInit& package)
{
    InInitState& state = *InInitMgr::getInstance()._state;
    if (state._initCalled && state._reinitCount == 0)
        raise<InEx::ExReinitWithoutGuard>(KR_HERE);
    if (!state.isInitialized(typeOf(package)))
        state._newPackages.push_back({&package});
}

void InPackageRegistrar::unregisterPackage(const InPackageInit& package)
{
    InInitMgr::getInstance()._state->forgetPackage(package);
}

bool InPackageRegistrar::isInitialized(const std::type_info& type)
{
    return InInitMgr::getInstance()._state->isInitialized(type);
}

// Its state

InInitState::InInitState()
{
    // What finalize uses is built before the manager, so that it also outlives it and finalize can
    // be called as the process exits.
    InCommandLine::getInstance();
    InNameTable::getInstance();
    InEnvSnapshot::getInstance();
}

void InInitState::initializeNewPackages()
{
    _initCalled = true;
    InNameTable::getInstance().close();
    while (!_newPackages.empty())
    {
        takeUpNewPackages();
        buildMatrix();
        closeMatrix();
        if (_cycle)
            raise<InEx::ExDependencyCycle>(KR_HERE);
        orderPackages();
        saveNewPackages();
        startPackages();
    }
}

bool InInitState::nameBefore(const PackageEntry& left, const PackageEntry& right)
{
    return std::strcmp(left.package->getName(), right.package->getName()) < 0;
}

/// Each type once, in the order of the names.
void InInitState::takeUpNewPackages()
{
    _packagesToInit = _newPackages;
    _newPackages.clear();
    const auto typeBefore = [](const PackageEntry& left, const PackageEntry& right)
    { return typeOf(*left.package).before(typeOf(*right.package)); };
    const auto typeEqual = [](const PackageEntry& left, const PackageEntry& right)
    { return typeOf(*left.package) == typeOf(*right.package); };

    // Stable, so that of two packages of one type the one that registered first stays.
    std::stable_sort(_packagesToInit.begin(), _packagesToInit.end(), typeBefore);
    _packagesToInit.erase(std::unique(_packagesToInit.begin(), _packagesToInit.end(), typeEqual),
                          _packagesToInit.end());
    std::sort(_packagesToInit.begin(), _packagesToInit.end(), &nameBefore);
}

void InInitState::buildMatrix()
{
    _cycle = false;
    _nbPckgs = static_cast<std::int32_t>(_packagesToInit.size());
    _dependencyMatrix = InDependencyMatrix(_packagesToInit.size());
    reportPackagesToInit();
    std::unordered_map<std::type_index, std::size_t> indices;
    for (std::size_t i = 0; i < _packagesToInit.size(); ++i)
        indices.emplace(typeOf(*_packagesToInit[i].package), i);
    for (std::size_t i = 0; i < _packagesToInit.size(); ++i)
        setDependencies(i, indices);
}

void InInitState::setDependencies(std::size_t index,
                                  const std::unordered_map<std::type_index, std::size_t>& indices)
{
    PackageEntry& entry = _packagesToInit[index];
    for (const std::type_info* type : entry.package->getDependencies())
    {
        const auto needed = indices.find(*type);
        if (needed == indices.end())
            raise<InEx::ExPackageNotRegistered>(KR_HERE, type->name());
        _dependencyMatrix.set(index, needed->second);
        ++entry._nbDependencies; // on purpose once for each listing, also of the same package
    }
}

void InInitState::closeMatrix()
{
    assert(!_cycle);
    const std::vector<std::int32_t> indirect = _dependencyMatrix.close();
    for (std::size_t i = 0; i < _packagesToInit.size(); ++i)
        _packagesToInit[i]._nbDependencies += indirect[i];
    _cycle = _dependencyMatrix.hasCycle();
}

void InInitState::orderPackages()
{
    assert(!_cycle);
    std::stable_sort(_packagesToInit.begin(), _packagesToInit.end(),
                     [](const PackageEntry& left, const PackageEntry& right)
                     { return left._nbDependencies < right._nbDependencies; });
    _dependencyMatrix = InDependencyMatrix();
}

void InInitState::saveNewPackages()
{
    for (const PackageEntry& entry : _packagesToInit)
    {
        const std::type_info& type = typeOf(*entry.package);
        const std::int32_t index = indexOfSaved(type);
        if (index != -1)
        {
            const SavedEntry& saved = _savedPackages[static_cast<std::size_t>(index)];
            if (saved.initialized || saved.isStarting)
                continue;
            // Left by a pass that failed: it takes its place in the order anew.
            forgetSaved(static_cast<std::size_t>(index));
        }
        _savedByType.emplace(type, static_cast<std::int32_t>(_savedPackages.size()));
        _savedPackages.push_back({entry, &type});
    }
}

void InInitState::startPackages()
{
    const ScopedFlag initializing(_initializing);
    Run run;
    run.entries = _packagesToInit;
    _runs.push_back(&run);
    try
    {
        while (run.next < run.entries.size())
            startPackage(PackageEntry(run.entries[run.next++]));
    }
    catch (...)
    {
        _runs.pop_back();
        throw;
    }
    _runs.pop_back();
    // A pass that ran inside a start routine gives way again to the one around it.
    _packagesToInit = _runs.empty() ? Entries() : _runs.back()->entries;
}

void InInitState::startPackage(const PackageEntry& entry)
{
    const std::type_info& type = typeOf(*entry.package);
    SavedEntry& saved = getSaved(type);
    if (saved.initialized || saved.isStarting) // another object of the type, by a pass within
        return;
    saved.isStarting = true;
    try
    {
        entry.package->initialize();
    }
    catch (...)
    {
        endStart(entry, type, false);
        throw;
    }
    endStart(entry, type, true);
}

void InInitState::endStart(const PackageEntry& entry, const std::type_info& type, bool isUp)
{
    SavedEntry& saved = getSaved(type);
    saved.isStarting = false;
    saved.initialized = isUp;
    _startRecords.push_back(
        {entry.package->getName(), entry._nbDependencies, entry.package->getStartTimes(), !isUp});
}

/// An entry counts as stopped before its stop routine runs, so that none is stopped twice when a
/// routine raises and the caller tries again.
void InInitState::stopPackages()
{
    const ScopedFlag finalizing(_finalizing);
    const auto isUp = [](const SavedEntry& entry) { return entry.initialized; };
    // Looked for anew each time: a stop routine may load and unload libraries.
    for (auto last = std::find_if(_savedPackages.rbegin(), _savedPackages.rend(), isUp);
         last != _savedPackages.rend();
         last = std::find_if(_savedPackages.rbegin(), _savedPackages.rend(), isUp))
    {
        last->initialized = false;
        last->package->finalize();
    }
    _savedPackages.clear();
    _savedByType.clear();
}

void InInitState::forgetPackage(const InPackageInit& package)
{
    const auto isIt = [&package](const PackageEntry& entry) { return entry.package == &package; };

    _newPackages.erase(std::remove_if(_newPackages.begin(), _newPackages.end(), isIt),
                       _newPackages.end());
    const auto waiting = std::find_if(_packagesToInit.begin(), _packagesToInit.end(), isIt);
    if (waiting != _packagesToInit.end())
    {
        if (_dependencyMatrix.getSize() == _packagesToInit.size())
            _dependencyMatrix.remove(static_cast<std::size_t>(waiting - _packagesToInit.begin()));
        _packagesToInit.erase(waiting);
    }
    const auto saved = std::find_if(_savedPackages.begin(), _savedPackages.end(), isIt);
    if (saved != _savedPackages.end())
        forgetSaved(static_cast<std::size_t>(saved - _savedPackages.begin()));
    for (Run* run : _runs)
    {
        const auto coming = std::find_if(run->entries.begin(), run->entries.end(), isIt);
        if (coming == run->entries.end())
            continue;
        if (static_cast<std::size_t>(coming - run->entries.begin()) < run->next)
            --run->next;
        run->entries.erase(coming);
    }
}

void InInitState::forgetSaved(std::size_t index)
{
    _savedByType.erase(*_savedPackages[index].type);
    _savedPackages.erase(_savedPackages.begin() + static_cast<std::ptrdiff_t>(index));
    for (std::size_t i = index; i < _savedPackages.size(); ++i)
        _savedByType[*_savedPackages[i].type] = static_cast<std::int32_t>(i);
}

std::int32_t InInitState::indexOfSaved(const std::type_info& type) const
{
    const auto found = _savedByType.find(type);
    return found != _savedByType.end() ? found->second : -1;
}

InInitState::SavedEntry& InInitState::getSaved(const std::type_info& type)
{
    const std::int32_t index = indexOfSaved(type);
    assert(index != -1);
    return _savedPackages[static_cast<std::size_t>(index)];
}

bool InInitState::isInitialized(const std::type_info& type) const
{
    const std::int32_t index = indexOfSaved(type);
    return index != -1 && _savedPackages[static_cast<std::size_t>(index)].initialized;
}

void InInitState::reportPackagesToInit() const
{
    if (!isInitDebugEnabled())
        return;
    std::cerr << "-->_nbPckgs:" << _nbPckgs << std::endl;
    for (std::size_t i = 0; i < _packagesToInit.size(); ++i)
        std::cerr << "_packagesToInit[" << i << "]: " << _packagesToInit[i].package->getName()
                  << std::endl;
}

} // namespace Kr

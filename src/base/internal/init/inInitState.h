#pragma once

/// @file
/// Internal to the initialisation manager: its private state.

#include <base/inPackageInit.h>
#include <base/internal/init/inDependencyMatrix.h>
#include <base/vector.h>

#include <cstddef>
#include <cstdint>
#include <ios>
#include <iosfwd>
#include <string>
#include <typeindex>
#include <unordered_map>

namespace Kr
{

struct InInitState
{
    struct PackageEntry
    {
        InPackageInit* package;
        std::int32_t _nbDependencies = 0;
        bool initialized = false;
    };

    /// A package that a pass has taken up. It remembers its type, because a package that is being
    /// destroyed cannot be asked for it any more.
    struct SavedEntry : PackageEntry
    {
        const std::type_info* type;
        bool isStarting = false;
    };

    /// A start, as `reportStart` tells it.
    struct StartRecord
    {
        std::string name;
        std::int32_t nbDependencies;
        InPackageInit::StartTimes times;
        bool failed;
    };

    using Entries = Vector<PackageEntry>;

    /// The start routines of one pass being run: `entries` from `next` on are still to come.
    struct Run
    {
        Entries entries;
        std::size_t next = 0;
    };

    InInitState();
    InInitState(const InInitState&) = delete;
    InInitState& operator=(const InInitState&) = delete;

    // An initialisation pass, and its steps in their order
    void initializeNewPackages();
    void takeUpNewPackages();
    void buildMatrix();
    void setDependencies(std::size_t index,
                         const std::unordered_map<std::type_index, std::size_t>& indices);
    void closeMatrix();
    void orderPackages();
    void saveNewPackages();
    void startPackages();
    void startPackage(const PackageEntry& entry);
    void endStart(const PackageEntry& entry, const std::type_info& type, bool isUp);

    void stopPackages();

    void forgetPackage(const InPackageInit& package);
    void forgetSaved(std::size_t index);
    static bool nameBefore(const PackageEntry& left, const PackageEntry& right);
    std::int32_t indexOfSaved(const std::type_info& type) const;
    SavedEntry& getSaved(const std::type_info& type);
    bool isInitialized(const std::type_info& type) const;

    void reportPackagesToInit() const;
    void writeCycles(std::ostream& stream) const;

    Entries _newPackages;
    Entries _packagesToInit;
    Vector<SavedEntry> _savedPackages;
    std::unordered_map<std::type_index, std::int32_t> _savedByType; ///< their indices
    bool _cycle = false;
    std::int32_t _nbPckgs = 0;
    InDependencyMatrix _dependencyMatrix;
    bool _initCalled = false;
    bool _finalized = false;
    bool _initializing = false;
    bool _finalizing = false;
    std::int32_t _reinitCount = 0;

    Vector<Run*> _runs; ///< those under way: a start routine may run a pass of its own
    Vector<StartRecord> _startRecords;
    // The first package registers before the objects of every source are built, on Windows even
    // those of the standard streams in this library.
    const std::ios_base::Init _streams;
};

} // namespace Kr

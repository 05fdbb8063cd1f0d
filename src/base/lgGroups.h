#pragma once

/// @file
/// Who logs what: groups, and the levels that are switched on for them.
///
/// A major group is a whole library or area of work; it holds the set of levels that are on. A
/// minor group is a topic within it: the handle that code asks before it logs. The package that
/// owns a minor group creates it when it starts and deletes it when it stops:
/// @code{.cpp}
/// namespace LgGroups
/// {
/// Kr::LgMinorGroup* KR_XGLUE(MinorLevel, Shadows) = nullptr;
/// }
///
/// void start()
/// {
///     LgGroups::KR_XGLUE(MinorLevel, Shadows) =
///         new Kr::LgMinorGroup(Kr::LgMajorGroup::getInstanceForName("Renderer"), "Shadows");
/// }
///
/// void castShadows()
/// {
///     if (LgGroups::MinorLevelShadows->isLevelEnabled(Kr::LgTypes::Tracing))
///         std::cout << "no light casts any\n";
/// }
///
/// void stop()
/// {
///     delete LgGroups::KR_XGLUE(MinorLevel, Shadows);
///     LgGroups::KR_XGLUE(MinorLevel, Shadows) = nullptr;
/// }
/// @endcode
/// The user of the program says which levels are on, with two environment variables that are read
/// when the logger starts:
///
///     setenv KR_LOG_GROUPS Database=Warning,UI=Informational,Radiosity=Profiling
///     setenv KR_LOG_DEFAULT_LEVEL Tracing
///
/// A third says how many messages a second a group may log, of each level but the two that report
/// fatal errors; those beyond are counted, and a line tells how many there were:
///
///     setenv KR_LOG_LIMITS UI=100,Radiosity=20
///
/// A group that owns itself needs no package: it may be static, exists before the logger starts and
/// after it stops, and is off then.
/// @code{.cpp}
/// static const Kr::LgGroup lights("Renderer", "Lights");
///
/// void light(int count)
/// {
///     KR_LOG(lights, Informational) << count << " lights";
/// }
/// @endcode
/// Pitfalls: a level switches on itself and everything more severe, but "Profiling" only itself.
/// Internal and fatal errors are always on. Blanks in the variables are not trimmed. The registry
/// of groups is for start-up and shut-down, by one thread; asking a group is for any thread at any
/// time. Major groups live as long as the process, and are off while the registry is closed; a
/// minor group that threads may still ask when its package has stopped is an `LgGroup`.

#include <base/krBaseApi.h>
#include <base/lgTypes.h>

#include <atomic>
#include <cstdint>
#include <iosfwd>

/// Joins its arguments, expanded, into one identifier.
#define KR_XGLUE(first, second) KR_XGLUE_EXPANDED(first, second)
#define KR_XGLUE_EXPANDED(first, second) first##second

namespace Kr
{

class LgLimit;

/// The levels that are switched on for an area of work: a set of level bits, 0x80 for "Internal
/// Error" down to 0x02 for "Profiling". A value: copies are independent of the registry.
class KR_BASE_API LgMajorGroup
{
public:
    /// Switches on what the default threshold of this moment says.
    LgMajorGroup();
    LgMajorGroup(const LgMajorGroup& other) noexcept
        : _logLevels(other.getLogLevels())
        , _limit(other.getLimit())
    {
    }
    LgMajorGroup& operator=(const LgMajorGroup& other) noexcept
    {
        _logLevels.store(other.getLogLevels(), std::memory_order_relaxed);
        _limit.store(other.getLimit(), std::memory_order_relaxed);
        return *this;
    }

    /// Switches on `level` and everything more severe and switches off what is less so. Profiling
    /// stays as it is, or goes off if `replaceAll` is true. The least severe threshold that can be
    /// asked for is "Fatal Error". With "Profiling", only switches profiling on.
    /// Raises `ExInternalError` for a value that is no level. Takes effect in all threads at once.
    void setLogThreshold(LgTypes::Level level, bool replaceAll);

    /// The level bits that are on.
    unsigned int getLogLevels() const noexcept
    {
        return _logLevels.load(std::memory_order_relaxed);
    }

    /// The level bits that a threshold of that level switches on. The level is not checked.
    static unsigned int getLevelMask(LgTypes::Level level) noexcept { return _levelMask[level]; }

    // The registry. For one thread, between `initialize` and `finalize`.

    /// The group of that name, made with the default threshold at the first request. The reference
    /// holds for the life of the process; from `finalize` on every level of the group is off, until
    /// the registry is open again and the group is asked for.
    static LgMajorGroup& getInstanceForName(const char* name);

    /// Opens the registry and applies the settings, unless null. If they raise, as a name without a
    /// level does, the registry is open and the settings before the culprit are applied.
    static void initialize(const char* settings);

    /// Sets the default threshold, then opens the registry and applies the settings: what the
    /// logger does first when it starts. Either text may be null. A name that is no level's is
    /// passed over, and told on the standard error stream.
    static void initialize(const char* defaultLevel, const char* settings);

    /// The same with the environment's KR_LOG_DEFAULT_LEVEL and KR_LOG_GROUPS.
    static void initializeFromEnvironment();

    /// Applies settings: pairs of a group's name, "=" and a level's name, separated by commas;
    /// empty items are skipped. A group may appear several times; each pair is a call of
    /// `setLogThreshold(level, false)`. A pair whose level does not exist is reported on standard
    /// output and skipped; a line on the standard error stream tells which levels there are. Raises
    /// `ExInternalError` for a name without a level.
    static void parse(const char* settings);

    /// Lets the group of that name log so many messages a second of each level, from all threads
    /// together; 0: as many as it likes. Fatal and internal errors are always logged. The others
    /// count as lost (`LgLog::getLostCount`), and a record a second tells how many there were.
    static void setLimit(const char* name, unsigned int messagesPerSecond);

    /// Applies limits: pairs of a group's name, "=" and a number, separated by commas. A pair
    /// without a number is reported on standard output and skipped.
    static void parseLimits(const char* settings);

    /// Closes the registry: every group is off, and without a limit.
    static void finalize();

    /// The threshold of groups made from now on, "Warning" at first; "Internal Error" counts as
    /// "Fatal Error". Raises `ExInternalError` for a value that is no level.
    static void setDefaultThreshold(LgTypes::Level level);
    static LgTypes::Level getDefaultThreshold() noexcept { return _defaultThreshold; }

    /// Lists the groups by name. The level that it names is not the threshold but the least severe
    /// that shares a bit with it, which is always "Tracing"; tools rely on this layout.
    static void printAll(std::ostream& os);

    /// How to set the two variables, a line each.
    static const char* getUsage() noexcept;

private:
    friend class LgGroup;
    friend class LgMinorGroup;

    struct Registry;

    static LgMajorGroup& find(const char* name);
    static bool setDefaultThreshold(const char* name);
    LgLimit* getLimit() const noexcept { return _limit.load(std::memory_order_relaxed); }
    void printLevels(std::ostream& os) const;

    static const std::uint32_t _levelMask[LgTypes::NUM_LEVELS];
    static LgTypes::Level _defaultThreshold;

    std::atomic<std::uint32_t> _logLevels;
    std::atomic<LgLimit*> _limit{nullptr}; // lives as long as the process; null: none
};

/// The handle through which code logs about one topic.
class KR_BASE_API LgMinorGroup
{
public:
    /// Neither argument is copied: both must outlive the group. What it logs may be written later:
    /// the process remembers the texts of up to 65534 names for that, and those of more groups read
    /// "(other)". Raises `ExInternalError` for a null name.
    LgMinorGroup(const LgMajorGroup& major, const char* name);

    /// Whether to log. One load and one test; for any thread. The level is not checked.
    bool isLevelEnabled(LgTypes::Level level) const noexcept
    {
        static constexpr std::uint32_t levelBit[LgTypes::NUM_LEVELS] = {0x80, 0x40, 0x20, 0x10,
                                                                        0x08, 0x04, 0x02};
        return (levelBit[level] & _major->getLogLevels()) != 0;
    }

    const char* getName() const noexcept { return _name; }

    /// The number under which the process knows the name, from 1; the same for the same text. A
    /// message of an `LgQueue` names its group by it.
    std::uint16_t getNumber() const noexcept { return _number; }

private:
    friend class LgStatement;

    LgLimit* getLimit() const noexcept { return _major->getLimit(); }

    const LgMajorGroup* _major;
    const char* _name;
    std::uint16_t _number;
};

/// A minor group that owns itself, and has every level off while the logger is not up. Threads may
/// log through it at any time. Making and ending one is for the thread that starts and stops the
/// logger.
class KR_BASE_API LgGroup : public LgMinorGroup
{
public:
    /// The names are not copied: they must outlive the group.
    LgGroup(const char* majorName, const char* name);
    LgGroup(const LgGroup&) = delete;
    LgGroup& operator=(const LgGroup&) = delete;
    ~LgGroup();

private:
    friend class LgMajorGroup;

    static void listMajors();

    const char* const _majorName;

    // In the list of all that exist.
    LgGroup* _next;
    LgGroup** _link; // what points to this one

    static LgGroup* _first;
};

} // namespace Kr

/// The minor groups, each named "MinorLevel" and its topic.
namespace LgGroups
{

/// The registry of build information; exists while the package `debugging` runs.
extern KR_BASE_API Kr::LgMinorGroup* KR_XGLUE(MinorLevel, BuildInfo);

} // namespace LgGroups

#include <base/lgGroups.h>

#include <base/assert.h>
#include <base/internal/errors/immortal.h>
#include <base/internal/log/lgGroupNames.h>
#include <base/internal/log/lgLimit.h>
#include <base/lgEx.h>
#include <base/osEnv.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace Kr
{

namespace
{

/// Cuts the text at the next of `end` and returns what stands before it, leading characters of
/// `skip` left out; null if nothing is left. Moves `text` behind the cut.
char* takeToken(char*& text, const char* skip, char end)
{
    char* token = text + std::strspn(text, skip);
    if (*token == '\0')
        return nullptr;
    text = token;
    while (*text != '\0' && *text != end)
        ++text;
    if (*text != '\0')
        *text++ = '\0';
    return token;
}

/// Tells the program's user what the text should have held.
void complain(const char* variable, const char* text)
{
    std::cerr << variable << ": '" << text << "' names no level; the levels are ";
    for (unsigned int l = 0; l < LgTypes::NUM_LEVELS; ++l)
        std::cerr << (l == 0 ? "" : ", ") << LgTypes::getLevelName(static_cast<LgTypes::Level>(l));
    std::cerr << std::endl;
}

bool parseNumber(std::string_view text, unsigned int& number)
{
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && rest == end;
}

} // namespace

/// All groups that ever were. Statements look at them at any time, also after the logger has
/// stopped.
struct LgMajorGroup::Registry
{
    struct Entry
    {
        LgMajorGroup group;
        std::unique_ptr<LgLimit> limit = nullptr;
        bool isListed = false; // since the registry was opened
    };

    std::map<std::string, Entry, std::less<>> entries; // by name
    bool isOpen = false;

    static Registry& get()
    {
        static Immortal<Registry> registry;
        return *registry;
    }

    /// The group is off if it is a new one.
    Entry& find(std::string_view name)
    {
        const auto found = entries.find(name);
        if (found != entries.end())
            return found->second;
        Entry& entry = entries[std::string(name)];
        entry.group._logLevels = 0;
        return entry;
    }
};

const std::uint32_t LgMajorGroup::_levelMask[] = {0x80, 0xC0, 0xE0, 0xF0, 0xF8, 0xFC, 0x02};

LgTypes::Level LgMajorGroup::_defaultThreshold = LgTypes::Warning;

LgMajorGroup::LgMajorGroup()
    : _logLevels(_levelMask[_defaultThreshold])
{
}

LgMajorGroup& LgMajorGroup::getInstanceForName(const char* name)
{
    KR_ASSERT_TEXT(Registry::get().isOpen, "names", 129);
    Registry::Entry& entry = Registry::get().find(name);
    if (!entry.isListed)
        entry.group = LgMajorGroup();
    entry.isListed = true;
    return entry.group;
}

/// The group of that name, whether the registry is open or not.
LgMajorGroup& LgMajorGroup::find(const char* name)
{
    return Registry::get().isOpen ? getInstanceForName(name) : Registry::get().find(name).group;
}

void LgMajorGroup::initialize(const char* settings)
{
    KR_ASSERT_TEXT(!Registry::get().isOpen, "!names", 166);
    Registry::get().isOpen = true;
    if (settings != nullptr)
        parse(settings);
    LgGroup::listMajors();
}

void LgMajorGroup::initializeFromEnvironment()
{
    initialize(OsEnv::getVariable("KR_LOG_DEFAULT_LEVEL"), OsEnv::getVariable("KR_LOG_GROUPS"));
}

void LgMajorGroup::initialize(const char* defaultLevel, const char* settings)
{
    if (defaultLevel != nullptr && !setDefaultThreshold(defaultLevel))
        complain("KR_LOG_DEFAULT_LEVEL", defaultLevel);
    initialize(settings);
}

/// False for a text that is not empty and names no level.
bool LgMajorGroup::setDefaultThreshold(const char* name)
{
    for (unsigned int l = 0; l < LgTypes::NUM_LEVELS; ++l)
    {
        const auto level = static_cast<LgTypes::Level>(l);
        if (std::strcmp(name, LgTypes::getLevelName(level)) != 0)
            continue;
        setDefaultThreshold(level);
        return true;
    }
    return *name == '\0';
}

void LgMajorGroup::parse(const char* settings)
{
    KR_ASSERT_TEXT(Registry::get().isOpen, "names", 183);
    std::string copy(settings);
    char* rest = copy.data();
    while (const char* group = takeToken(rest, "=,", '='))
    {
        const char* name = nullptr;
        try
        {
            // The level first: a misspelt one creates no group.
            name = takeToken(rest, ",", ',');
            if (name == nullptr)
                complain("KR_LOG_GROUPS", group);
            const LgTypes::Level level = LgTypes::getLevelFromString(name);
            getInstanceForName(group).setLogThreshold(level, false);
        }
        catch (const LgEx::InvalidLevelString& error)
        {
            std::cout << error.getReason() << std::endl;
            complain("KR_LOG_GROUPS", (std::string(group) + '=' + name).c_str());
        }
    }
}

void LgMajorGroup::setLimit(const char* name, unsigned int messagesPerSecond)
{
    LgMajorGroup& group = getInstanceForName(name);
    std::unique_ptr<LgLimit>& limit = Registry::get().find(name).limit;
    if (limit == nullptr)
        limit = std::make_unique<LgLimit>(name);
    limit->setRate(messagesPerSecond);
    group._limit = messagesPerSecond != 0 ? limit.get() : nullptr;
}

void LgMajorGroup::parseLimits(const char* settings)
{
    std::string copy(settings);
    char* rest = copy.data();
    while (const char* group = takeToken(rest, "=,", '='))
    {
        const char* const text = takeToken(rest, ",", ',');
        unsigned int rate = 0;
        if (text != nullptr && parseNumber(text, rate))
            setLimit(group, rate);
        else
            std::cout << "Invalid value for KR_LOG_LIMITS: " << group << '='
                      << (text != nullptr ? text : "") << std::endl;
    }
}

void LgMajorGroup::finalize()
{
    KR_ASSERT_TEXT(Registry::get().isOpen, "names", 216);
    for (auto& [name, entry] : Registry::get().entries)
    {
        entry.group._logLevels = 0;
        entry.group._limit = nullptr;
        entry.isListed = false;
    }
    Registry::get().isOpen = false;
}

void LgMajorGroup::setDefaultThreshold(LgTypes::Level l)
{
    KR_ASSERT_TEXT(l < LgTypes::NUM_LEVELS, "l < NUM_LEVELS", 239);
    _defaultThreshold = std::max(l, LgTypes::FatalError);
}

void LgMajorGroup::setLogThreshold(LgTypes::Level l, bool replaceAll)
{
    KR_ASSERT_TEXT(l < LgTypes::NUM_LEVELS, "l < NUM_LEVELS", 256);
    const std::uint32_t profiling = _levelMask[LgTypes::Profiling];
    const std::uint32_t old = getLogLevels();
    std::uint32_t levels = old | profiling;
    if (l != LgTypes::Profiling)
        levels = (replaceAll ? 0 : old & profiling) | _levelMask[std::max(l, LgTypes::FatalError)];
    _logLevels.store(levels, std::memory_order_relaxed);
}

void LgMajorGroup::printLevels(std::ostream& os) const
{
    // By the masks, not the bits, on purpose: see printAll.
    for (unsigned int l = LgTypes::Tracing; l >= LgTypes::FatalError; --l)
        if ((getLogLevels() & _levelMask[l]) != 0)
        {
            os << LgTypes::getLevelName(static_cast<LgTypes::Level>(l));
            break;
        }
    if ((getLogLevels() & _levelMask[LgTypes::Profiling]) != 0)
        os << ", " << LgTypes::getLevelName(LgTypes::Profiling);
}

void LgMajorGroup::printAll(std::ostream& os)
{
    constexpr std::size_t width = 24;
    os << "Major Groups:\n";
    for (const auto& [name, entry] : Registry::get().entries)
    {
        if (!entry.isListed)
            continue;
        os << std::string(width - std::min(name.size(), width), ' ') << name << ' ';
        entry.group.printLevels(os);
        os << '\n';
    }
}

const char* LgMajorGroup::getUsage() noexcept
{
    return "setenv KR_LOG_GROUPS Database=Warning,UI=Informational,Radiosity=Profiling\n"
           "setenv KR_LOG_DEFAULT_LEVEL Tracing\n";
}

LgMinorGroup::LgMinorGroup(const LgMajorGroup& major, const char* n)
    : _major(&major)
    , _name(n)
    , _number(0)
{
    KR_ASSERT_AT(n, 314);
    _number = LgGroupNames::getNumber(n);
}

LgGroup* LgGroup::_first = nullptr;

LgGroup::LgGroup(const char* majorName, const char* name)
    : LgMinorGroup((KR_ASSERT(majorName), LgMajorGroup::find(majorName)), name)
    , _majorName(majorName)
    , _next(_first)
    , _link(&_first)
{
    if (_next != nullptr)
        _next->_link = &_next;
    _first = this;
}

LgGroup::~LgGroup()
{
    *_link = _next;
    if (_next != nullptr)
        _next->_link = _link;
}

void LgGroup::listMajors()
{
    for (const LgGroup* group = _first; group != nullptr; group = group->_next)
        LgMajorGroup::getInstanceForName(group->_majorName);
}

} // namespace Kr

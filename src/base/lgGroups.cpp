#include <base/lgGroups.h>

#include <base/assert.h>
#include <base/internal/log/lgGroupNames.h>
#include <base/lgEx.h>
#include <base/osEnv.h>

#include <algorithm>
#include <cstring>
#include <iostream>
#include <list>
#include <map>
#include <string>

namespace Kr
{

namespace
{

struct NameOrder
{
    bool operator()(const char* left, const char* right) const
    {
        return std::strcmp(left, right) < 0;
    }
};

using Names = std::list<std::string>;
using MajorGroups = std::map<const char*, LgMajorGroup, NameOrder>; // keys: the texts of `names`

Names* names = nullptr;
MajorGroups* majorGroups = nullptr;

const char* storeName(const char* name)
{
    const auto found = std::find(names->begin(), names->end(), name);
    return found != names->end() ? found->c_str() : names->emplace_back(name).c_str();
}

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

} // namespace

const std::uint32_t LgMajorGroup::_levelMask[] = {0x80, 0xC0, 0xE0, 0xF0, 0xF8, 0xFC, 0x02};

LgTypes::Level LgMajorGroup::_defaultThreshold = LgTypes::Warning;

LgMajorGroup::LgMajorGroup()
    : _logLevels(_levelMask[_defaultThreshold])
{
}

LgMajorGroup& LgMajorGroup::getInstanceForName(const char* name)
{
    KR_ASSERT_AT(names, 129);
    KR_ASSERT_AT(majorGroups, 130);
    return (*majorGroups)[storeName(name)];
}

void LgMajorGroup::initialize(const char* settings)
{
    KR_ASSERT_AT(!names, 166);
    KR_ASSERT_AT(!majorGroups, 167);
    names = new Names;
    majorGroups = new MajorGroups;
    if (settings != nullptr)
        parse(settings);
    LgGroup::bindAll();
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
    KR_ASSERT_AT(names, 183);
    KR_ASSERT_AT(majorGroups, 184);
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

void LgMajorGroup::finalize()
{
    KR_ASSERT_AT(names, 216);
    KR_ASSERT_AT(majorGroups, 217);
    LgGroup::unbindAll();
    delete majorGroups;
    majorGroups = nullptr;
    delete names;
    names = nullptr;
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
    for (const auto& [name, group] : *majorGroups)
    {
        const std::size_t length = std::strlen(name);
        os << std::string(width - std::min(length, width), ' ') << name << ' ';
        group.printLevels(os);
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

/// Never destroyed: groups that own themselves may outlive every other object.
const LgMajorGroup& LgMajorGroup::getOff()
{
    static const LgMajorGroup& off = []() -> LgMajorGroup&
    {
        auto* group = new LgMajorGroup;
        group->_logLevels = 0;
        return *group;
    }();
    return off;
}

LgGroup* LgGroup::_first = nullptr;

LgGroup::LgGroup(const char* majorName, const char* name)
    : LgMinorGroup(LgMajorGroup::getOff(), name)
    , _majorName(majorName)
    , _next(_first)
{
    KR_ASSERT(majorName);
    if (majorGroups != nullptr)
        _major = &LgMajorGroup::getInstanceForName(_majorName);
    _first = this;
}

LgGroup::~LgGroup()
{
    LgGroup** link = &_first;
    while (*link != this)
        link = &(*link)->_next;
    *link = _next;
}

void LgGroup::bindAll()
{
    for (LgGroup* group = _first; group != nullptr; group = group->_next)
        group->_major = &LgMajorGroup::getInstanceForName(group->_majorName);
}

void LgGroup::unbindAll() noexcept
{
    for (LgGroup* group = _first; group != nullptr; group = group->_next)
        group->_major = &LgMajorGroup::getOff();
}

} // namespace Kr

#include <base/inContextAlias.h>
#include <base/inInit.imp>
#include <base/inInitMgr.h>
#include <base/inVariable.h>
#include <base/internal/log/lgSystemTracks.h>
#include <base/krInitPackages.h>
#include <base/lgLog.h>
#include <base/osEnv.h>

#include <cstdint>
#include <cstring>
#include <iostream>
#include <map>
#include <string>

template class Kr::InInit<KrInit::logger>;

static Kr::InInit<KrInit::logger> loggerPackage;

namespace
{

enum class Format
{
    Text,
    Json
};

/// A setting of the logger: an initialisation variable and the environment variable that it has
/// always had.
template <class T>
struct Setting
{
    Setting(const char* environmentName, const char* handle, T defaultValue, const char* help,
            Kr::InValueForm<T> form = {})
        : name(environmentName)
        , alias(handle, nullptr, environmentName)
        , variable(loggerPackage, handle, defaultValue, help, form)
    {
    }

    const char* const name;
    const Kr::InContextAlias alias;
    const Kr::InVariable<T> variable;
};

constexpr const char* destinationHelp =
    "file, stdout, stderr, none, or a path with a dot or separator";

// The texts that are checked where they are read.
const Setting<std::string> texts[] = {
    {"KR_LOG_DEFAULT_LEVEL", "logger.defaultLevel", "",
     "The threshold of groups not named in KR_LOG_GROUPS; Warning if not given"},
    {"KR_LOG_GROUPS", "logger.groups", "", "Thresholds of groups: Database=Warning,UI=Tracing"},
    {"KR_LOG_LIMITS", "logger.limits", "", "Messages a second of groups: Database=100,UI=20"},
    {"KR_LOG_DIR", "logger.directory", "",
     "The log directory; by default among the temporary files"},
    {"KR_LOG_INTERNAL_ERROR", "logger.internalError", "file", destinationHelp},
    {"KR_LOG_FATAL_ERROR", "logger.fatalError", "file", destinationHelp},
    {"KR_LOG_RECOVERABLE_ERROR", "logger.error", "file", destinationHelp},
    {"KR_LOG_WARNING", "logger.warning", "file", destinationHelp},
    {"KR_LOG_INFORMATIONAL", "logger.informational", "file", destinationHelp},
    {"KR_LOG_TRACING", "logger.tracing", "file", destinationHelp},
    {"KR_LOG_PROFILING", "logger.profiling", "file", destinationHelp},
    {"KR_LOG_MAX_SIZE", "logger.maxSize", "",
     "Bytes, or with K, M, G, beyond which a file is begun anew"},
    {"KR_LOG_TIMELINE", "logger.timeline", "", "The file of the timeline"},
};

const Setting<bool> switches[] = {
    {"KR_LOG_DISABLE_TIMESTAMPS", "logger.disableTimestamps", false, "Leave out the time"},
    {"KR_BLOCKING_TRACE", "logger.blocking", false, "A thread with a full queue waits"},
    {"KR_INTERNAL_INTERPROCESS_LOG_LOCK", "logger.interProcessLock", true,
     "Lock files that several processes write"},
    {"KR_LOG_SURVIVE", "logger.survive", false,
     "What waits to be written survives a kill of the process"},
};

const Setting<Format> format("KR_LOG_FORMAT", "logger.format", Format::Text, "The form of a line",
                             {{"text", Format::Text}, {"json", Format::Json}});

const Setting<std::int32_t> maxFiles("KR_LOG_MAX_FILES", "logger.maxFiles", 1,
                                     "How many renamed files stay", {1, 999});

const Kr::InValueForm<double> intervalForm(0., 3600.);
const Setting<double> timelineCounters(
    "KR_LOG_TIMELINE_COUNTERS", "logger.timelineCounters", 0.,
    "Seconds between the samples of processor and memory in the timeline; 0 for none",
    intervalForm);

std::map<std::string, std::string> given; // by the environment variable's name

std::string toText(const std::string& value)
{
    return value;
}

std::string toText(bool value)
{
    return value ? "on" : "off";
}

std::string toText(Format value)
{
    return value == Format::Json ? "json" : "text";
}

std::string toText(std::int32_t value)
{
    return std::to_string(value);
}

template <class T>
void take(const Setting<T>& setting)
{
    if (setting.variable.getSource() != Kr::InNamedVariable::Source::Default)
        given[setting.name] = toText(setting.variable.getValue());
}

void takeAll()
{
    for (const Setting<std::string>& each : texts)
        take(each);
    for (const Setting<bool>& each : switches)
        take(each);
    take(format);
    take(maxFiles);
}

bool isSame(const char* a, const char* b)
{
    return a == b || (a != nullptr && b != nullptr && std::strcmp(a, b) == 0);
}

/// A variable knows the environment as it was when the process began. What the program has put
/// there since counts, too, where nothing else is given.
const char* lookUp(const char* name)
{
    const auto found = given.find(name);
    if (found != given.end())
        return found->second.c_str();
    const char* const now = Kr::OsEnv::getVariable(name);
    const bool isSetting = std::strncmp(name, "KR_", 3) == 0;
    return isSetting && isSame(now, Kr::InInitMgr::getEnv(name)) ? nullptr : now;
}

/// Of the samples of counters, in seconds.
double getInterval()
{
    double interval = timelineCounters.variable.getValue();
    const bool isGiven =
        timelineCounters.variable.getSource() != Kr::InNamedVariable::Source::Default;
    const char* const now = isGiven ? nullptr : lookUp(timelineCounters.name);
    if (now != nullptr && *now != '\0' && !intervalForm.parse(now, interval))
        std::cout << "Invalid value for " << timelineCounters.name << ": " << now << std::endl;
    return interval;
}

} // namespace

void KrInit::logger::start()
{
    given.clear();
    takeAll();
    Kr::LgLog::init(lookUp);
    Kr::LgSystemTracks::start(getInterval());
}

void KrInit::logger::stop()
{
    Kr::LgLog::destroy();
    Kr::LgSystemTracks::stop();
}

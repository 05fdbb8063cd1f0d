#include <base/internal/log/lgSettings.h>

#include <base/internal/errors/processIdentity.h>
#include <base/internal/log/lgFolder.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <limits>
#include <ostream>
#include <string_view>
#include <system_error>

namespace Kr
{

namespace
{

/// The variable and the default file of each level, in the order of the levels.
struct LevelOutput
{
    const char* variable;
    const char* file;
};

constexpr LevelOutput levelOutputs[] = {
    {"KR_LOG_INTERNAL_ERROR", "events.log"},    {"KR_LOG_FATAL_ERROR", "events.log"},
    {"KR_LOG_RECOVERABLE_ERROR", "events.log"}, {"KR_LOG_WARNING", "events.log"},
    {"KR_LOG_INFORMATIONAL", "events.log"},     {"KR_LOG_TRACING", "events.log"},
    {"KR_LOG_PROFILING", "prof.log"},
};

template <class Value>
struct Word
{
    const char* text;
    Value value;
};

constexpr Word<bool> switchWords[] = {{"on", true},   {"1", true},     {"yes", true},
                                      {"true", true}, {"off", false},  {"0", false},
                                      {"no", false},  {"false", false}};
constexpr Word<bool> formatWords[] = {{"text", false}, {"json", true}};
constexpr Word<LgDestination::Kind> destinationWords[] = {{"file", LgDestination::file},
                                                          {"stdout", LgDestination::standardOutput},
                                                          {"stderr", LgDestination::standardError},
                                                          {"none", LgDestination::none}};

bool isSameLetter(char left, char right)
{
    const auto toSmall = [](char c) { return c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c; };
    return toSmall(left) == toSmall(right);
}

template <class Value, std::size_t Count>
bool parseWord(const Word<Value> (&words)[Count], std::string_view text, Value& value)
{
    for (const Word<Value>& word : words)
    {
        const std::string_view name = word.text;
        if (!std::equal(text.begin(), text.end(), name.begin(), name.end(), isSameLetter))
            continue;
        value = word.value;
        return true;
    }
    return false;
}

/// A count of bytes, with K, M or G for the powers of 1024.
bool parseSize(std::string_view text, std::uint64_t& value)
{
    constexpr std::string_view units = "KMG";
    std::uint64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    int shift = 0;
    if (rest != end && rest + 1 == end && units.find(*rest) != units.npos)
        shift = 10 * static_cast<int>(units.find(*rest) + 1);
    else if (rest != end)
        return false;
    if (error != std::errc() || number > (std::numeric_limits<std::uint64_t>::max() >> shift))
        return false;
    value = number << shift;
    return true;
}

bool parseKeptFiles(std::string_view text, int& value)
{
    int number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || rest != end || number < 1 || number > 999)
        return false;
    value = number;
    return true;
}

/// From the root on and in one spelling, wherever the program goes meanwhile.
std::string fromRoot(std::string text)
{
    std::replace(text.begin(), text.end(), '\\', '/');
    std::filesystem::path path(text);
    // A drive that the system does not know is left to the file layer, which does.
    const bool hasForeignDrive = text.find(':') == 1 && !path.has_root_name();
    std::error_code error;
    if (!hasForeignDrive)
        path = std::filesystem::absolute(path, error);
    return error ? text : path.lexically_normal().make_preferred().string();
}

bool isAbsolute(std::string_view path)
{
    return path.find_first_of("/\\") == 0 || path.find(':') == 1;
}

/// Puts the process's number in the place of every "%p".
std::string expand(std::string text)
{
    const std::string number = std::to_string(ProcessIdentity::getProcessId());
    for (std::size_t at = text.find("%p"); at != text.npos; at = text.find("%p", at))
        text.replace(at, 2, number);
    return text;
}

std::string inDirectory(const std::string& directory, const char* path)
{
    return fromRoot(isAbsolute(path) ? expand(path) : directory + '/' + expand(path));
}

/// A folder of the user's own among the temporary files, so that nothing appears in the working
/// directory of a program that says nothing about its log.
std::string defaultDirectory(LgSettings::Lookup lookup)
{
    std::error_code error;
    const std::string temporary = std::filesystem::temp_directory_path(error).string();
    const char* user = lookup("USER") != nullptr ? lookup("USER") : lookup("USERNAME");
    const std::string name = "KRbase-" + (user != nullptr ? user : LgFolder::getUserName());
    return error ? name : (std::filesystem::path(temporary) / name).string();
}

class Reading
{
public:
    Reading(LgSettings::Lookup lookup, std::ostream& report)
        : _lookup(lookup)
        , _report(report)
    {
    }

    LgSettings read()
    {
        readDirectory();
        for (std::size_t level = 0; level < LgTypes::NUM_LEVELS; ++level)
            readDestination(levelOutputs[level], _settings.destinations[level]);
        bool noStamps = false;
        readWord("KR_LOG_DISABLE_TIMESTAMPS", switchWords, noStamps);
        _settings.hasTimeStamps = !noStamps;
        readWord("KR_BLOCKING_TRACE", switchWords, _settings.isBlocking);
        readWord("KR_INTERNAL_INTERPROCESS_LOG_LOCK", switchWords,
                 _settings.isLockedBetweenProcesses);
        readWord("KR_LOG_SURVIVE", switchWords, _settings.survivesKill);
        readWord("KR_LOG_FORMAT", formatWords, _settings.isJson);
        readNumber("KR_LOG_MAX_SIZE", parseSize, _settings.maxFileSize);
        readNumber("KR_LOG_MAX_FILES", parseKeptFiles, _settings.keptFiles);
        if (const char* path = getValue("KR_LOG_TIMELINE"))
            _settings.timelinePath = inDirectory(_settings.directory, path);
        return _settings;
    }

private:
    /// Null also for a variable that is set to nothing.
    const char* getValue(const char* name) const
    {
        const char* value = _lookup(name);
        return value != nullptr && *value != '\0' ? value : nullptr;
    }

    void reject(const char* name, const char* value)
    {
        _report << "Invalid value for " << name << ": " << value << std::endl;
    }

    void readDirectory()
    {
        const char* directory = getValue("KR_LOG_DIR");
        if (directory == nullptr)
            directory = getValue("R4P_TEST_DIR");
        _settings.isDirectoryPrivate = directory == nullptr;
        _settings.directory =
            fromRoot(directory != nullptr ? expand(directory) : defaultDirectory(_lookup));
    }

    template <class Value, std::size_t Count>
    void readWord(const char* name, const Word<Value> (&words)[Count], Value& value)
    {
        const char* text = getValue(name);
        if (text != nullptr && !parseWord(words, text, value))
            reject(name, text);
    }

    template <class Value>
    void readNumber(const char* name, bool (*parse)(std::string_view, Value&), Value& value)
    {
        const char* text = getValue(name);
        if (text != nullptr && !parse(text, value))
            reject(name, text);
    }

    /// A path is told from a misspelt word by its separator or dot.
    void readDestination(const LevelOutput& output, LgDestination& destination)
    {
        destination.path = inDirectory(_settings.directory, output.file);
        const char* text = getValue(output.variable);
        if (text == nullptr || parseWord(destinationWords, text, destination.kind))
            return;
        if (std::strpbrk(text, "/\\.") != nullptr)
            destination.path = inDirectory(_settings.directory, text);
        else
            reject(output.variable, text);
    }

    const LgSettings::Lookup _lookup;
    std::ostream& _report;
    LgSettings _settings;
};

} // namespace

std::string LgSettings::getPrivateFolder(const std::string& path) const
{
    const bool isInside = path.compare(0, directory.size(), directory) == 0;
    return isDirectoryPrivate && isInside ? directory : std::string();
}

LgSettings LgSettings::read(Lookup lookup, std::ostream& report)
{
    return Reading(lookup, report).read();
}

} // namespace Kr

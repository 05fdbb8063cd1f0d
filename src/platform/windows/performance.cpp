#include <platform/performance.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <utility>

namespace
{

// The system's library, loaded by the first call; or the one of its name that the program has
// loaded

HMODULE loadLibrary() noexcept
{
    HMODULE loaded = nullptr;
    if (GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_PIN, "pdh.dll", &loaded) != 0)
        return loaded;
    char path[MAX_PATH + sizeof "\\pdh.dll"];
    const UINT length = GetSystemDirectoryA(path, MAX_PATH);
    if (length == 0 || length >= MAX_PATH)
        return nullptr;
    lstrcpyA(path + length, "\\pdh.dll");
    return LoadLibraryA(path);
}

HMODULE getLibrary() noexcept
{
    static const HMODULE library = loadLibrary();
    return library;
}

/// A function of the library, null if it has none of that name.
template <class Function>
Function* find(const char* name) noexcept
{
    if (getLibrary() == nullptr)
        return nullptr;
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(getLibrary(), name)));
}

template <class Function, class... Arguments>
PDH_STATUS call(Function* function, Arguments... arguments) noexcept
{
    return function != nullptr ? function(arguments...)
                               : static_cast<PDH_STATUS>(PDH_NOT_IMPLEMENTED);
}

bool isStatus(PDH_STATUS status, DWORD code) noexcept
{
    return static_cast<DWORD>(status) == code;
}

} // namespace

// The calls under their own names: each goes to the library's

PDH_STATUS WINAPI PdhOpenQueryA(LPCSTR source, DWORD_PTR user, PDH_HQUERY* query)
{
    static auto* const function = find<decltype(PdhOpenQueryA)>("PdhOpenQueryA");
    return call(function, source, user, query);
}

PDH_STATUS WINAPI PdhAddEnglishCounterA(PDH_HQUERY query, LPCSTR path, DWORD_PTR user,
                                        PDH_HCOUNTER* counter)
{
    static auto* const function = find<decltype(PdhAddEnglishCounterA)>("PdhAddEnglishCounterA");
    return call(function, query, path, user, counter);
}

PDH_STATUS WINAPI PdhRemoveCounter(PDH_HCOUNTER counter)
{
    static auto* const function = find<decltype(PdhRemoveCounter)>("PdhRemoveCounter");
    return call(function, counter);
}

PDH_STATUS WINAPI PdhCollectQueryData(PDH_HQUERY query)
{
    static auto* const function = find<decltype(PdhCollectQueryData)>("PdhCollectQueryData");
    return call(function, query);
}

PDH_STATUS WINAPI PdhGetFormattedCounterValue(PDH_HCOUNTER counter, DWORD format, LPDWORD type,
                                              PPDH_FMT_COUNTERVALUE value)
{
    static auto* const function =
        find<decltype(PdhGetFormattedCounterValue)>("PdhGetFormattedCounterValue");
    return call(function, counter, format, type, value);
}

PDH_STATUS WINAPI PdhGetCounterInfoA(PDH_HCOUNTER counter, BOOLEAN withText, LPDWORD size,
                                     PPDH_COUNTER_INFO_A info)
{
    static auto* const function = find<decltype(PdhGetCounterInfoA)>("PdhGetCounterInfoA");
    return call(function, counter, withText, size, info);
}

PDH_STATUS WINAPI PdhCloseQuery(PDH_HQUERY query)
{
    static auto* const function = find<decltype(PdhCloseQuery)>("PdhCloseQuery");
    return call(function, query);
}

PDH_STATUS WINAPI PdhEnumObjectsA(LPCSTR source, LPCSTR machine, LPSTR objects, LPDWORD size,
                                  DWORD detail, WINBOOL refresh)
{
    static auto* const function = find<decltype(PdhEnumObjectsA)>("PdhEnumObjectsA");
    return call(function, source, machine, objects, size, detail, refresh);
}

PDH_STATUS WINAPI PdhEnumObjectItemsA(LPCSTR source, LPCSTR machine, LPCSTR object, LPSTR counters,
                                      LPDWORD countersSize, LPSTR instances, LPDWORD instancesSize,
                                      DWORD detail, DWORD flags)
{
    static auto* const function = find<decltype(PdhEnumObjectItemsA)>("PdhEnumObjectItemsA");
    return call(function, source, machine, object, counters, countersSize, instances, instancesSize,
                detail, flags);
}

PDH_STATUS WINAPI PdhLookupPerfIndexByNameA(LPCSTR machine, LPCSTR name, LPDWORD index)
{
    static auto* const function =
        find<decltype(PdhLookupPerfIndexByNameA)>("PdhLookupPerfIndexByNameA");
    return call(function, machine, name, index);
}

PDH_STATUS WINAPI PdhLookupPerfNameByIndexA(LPCSTR machine, DWORD index, LPSTR name, LPDWORD size)
{
    static auto* const function =
        find<decltype(PdhLookupPerfNameByIndexA)>("PdhLookupPerfNameByIndexA");
    return call(function, machine, index, name, size);
}

namespace
{

constexpr int mostTries = 8; ///< to get a list that grows between the question for its size and it

/// A list as the system gives it: texts one after the other, an empty one at the end.
std::vector<std::string> split(const std::string& list)
{
    std::vector<std::string> texts;
    for (std::size_t begin = 0; begin < list.size() && list[begin] != '\0';
         begin += texts.back().size() + 1)
        texts.emplace_back(list.c_str() + begin);
    return texts;
}

// Names: the system lists them in the user's language, and numbers them alike in all

/// Each number and its English name; empty if the system keeps no such list.
std::string readEnglishList()
{
    constexpr const char* key = "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Perflib\\009";
    std::string list;
    DWORD size = 0;
    LSTATUS status = ERROR_MORE_DATA;
    const auto isIncomplete = [&]
    { return status == ERROR_MORE_DATA || (status == ERROR_SUCCESS && size > list.size()); };
    for (int i = 0; i < mostTries && isIncomplete(); ++i)
    {
        list.resize(size);
        status = RegGetValueA(HKEY_LOCAL_MACHINE, key, "Counter", RRF_RT_REG_MULTI_SZ, nullptr,
                              list.empty() ? nullptr : list.data(), &size);
    }
    return status == ERROR_SUCCESS ? list : std::string();
}

/// The English names by their numbers.
std::map<DWORD, std::string> readEnglishNames()
{
    std::map<DWORD, std::string> names;
    const std::vector<std::string> texts = split(readEnglishList());
    for (std::size_t i = 0; i + 1 < texts.size(); i += 2)
        names[std::strtoul(texts[i].c_str(), nullptr, 10)] = texts[i + 1];
    return names;
}

/// Read anew each time: listing is seldom, and what is installed brings names.
class Translator
{
public:
    Translator()
        : _english(readEnglishNames())
    {
    }

    /// The name itself where the system knows no other.
    std::string toEnglish(const std::string& local) const
    {
        DWORD number = 0;
        if (PdhLookupPerfIndexByNameA(nullptr, local.c_str(), &number) != ERROR_SUCCESS)
            return local;
        const auto found = _english.find(number);
        return found != _english.end() ? found->second : local;
    }

    /// All that an English name may be called here: several numbers can have the same name.
    std::vector<std::string> toLocal(const std::string& english) const
    {
        std::vector<std::string> names{english};
        for (const auto& [number, name] : _english)
        {
            if (lstrcmpiA(name.c_str(), english.c_str()) != 0)
                continue;
            char local[PDH_MAX_COUNTER_NAME];
            DWORD size = sizeof local;
            if (PdhLookupPerfNameByIndexA(nullptr, number, local, &size) == ERROR_SUCCESS &&
                std::find(names.begin(), names.end(), local) == names.end())
                names.emplace_back(local);
        }
        return names;
    }

private:
    const std::map<DWORD, std::string> _english;
};

/// Tries anew when objects have come between the question how many there are and the answer.
PDH_STATUS enumerateObjects(std::string& objects)
{
    auto status = static_cast<PDH_STATUS>(PDH_MORE_DATA);
    for (int i = 0; i < mostTries && isStatus(status, PDH_MORE_DATA); ++i)
    {
        auto size = static_cast<DWORD>(objects.size());
        status = PdhEnumObjectsA(nullptr, nullptr, objects.empty() ? nullptr : objects.data(),
                                 &size, PERF_DETAIL_WIZARD, i == 0 ? TRUE : FALSE);
        objects.resize(std::max<std::size_t>(objects.size(), size));
    }
    return status;
}

/// The same for instances.
PDH_STATUS enumerateItems(const std::string& object, std::string& counters, std::string& instances)
{
    auto status = static_cast<PDH_STATUS>(PDH_MORE_DATA);
    for (int i = 0; i < mostTries && isStatus(status, PDH_MORE_DATA); ++i)
    {
        auto counterSize = static_cast<DWORD>(counters.size());
        auto instanceSize = static_cast<DWORD>(instances.size());
        status = PdhEnumObjectItemsA(nullptr, nullptr, object.c_str(),
                                     counters.empty() ? nullptr : counters.data(), &counterSize,
                                     instances.empty() ? nullptr : instances.data(), &instanceSize,
                                     PERF_DETAIL_WIZARD, 0);
        counters.resize(std::max<std::size_t>(counters.size(), counterSize));
        instances.resize(std::max<std::size_t>(instances.size(), instanceSize));
    }
    return status;
}

// A system that cannot list

/// Wine's own can not: one of its calls says so, the other ends the process. Its libraries bear a
/// mark behind the header that every library begins with.
bool canList() noexcept
{
    constexpr char mark[] = "Wine builtin DLL";
    const auto* const image = reinterpret_cast<const char*>(getLibrary());
    return image == nullptr ||
           std::memcmp(image + sizeof(IMAGE_DOS_HEADER), mark, sizeof mark) != 0;
}

struct KnownCounter
{
    const char* object;
    const char* instance; ///< empty if the object has none
    const char* counter;
};

constexpr KnownCounter knownCounters[] = {
    {"Memory", "", "Available Bytes"},
    {"PhysicalDisk", "_Total", "Disk Bytes/sec"},
    {"Process", "_Total", "% Processor Time"},
    {"Process", "_Total", "Working Set"},
    {"Processor", "_Total", "% Processor Time"},
    {"Processor", "0", "% Processor Time"},
    {"System", "", "Processes"},
    {"System", "", "System Up Time"},
};

bool isThere(const KnownCounter& known)
{
    std::string path = std::string("\\") + known.object;
    if (*known.instance != '\0')
        path.append("(").append(known.instance).append(")");
    path.append("\\").append(known.counter);
    PDH_HQUERY query = nullptr;
    PDH_HCOUNTER counter = nullptr;
    if (PdhOpenQueryA(nullptr, 0, &query) != ERROR_SUCCESS)
        return false;
    const PDH_STATUS status = PdhAddEnglishCounterA(query, path.c_str(), 0, &counter);
    PdhCloseQuery(query);
    return status == ERROR_SUCCESS;
}

void addOnce(std::vector<std::string>& names, const char* name)
{
    if (*name != '\0' && std::find(names.begin(), names.end(), name) == names.end())
        names.emplace_back(name);
}

} // namespace

PDH_STATUS krListCounterObjects(std::vector<std::string>& objects)
{
    if (!canList())
    {
        for (const KnownCounter& known : knownCounters)
            if (isThere(known))
                addOnce(objects, known.object);
        return ERROR_SUCCESS;
    }
    std::string list;
    const PDH_STATUS status = enumerateObjects(list);
    const Translator translator;
    for (const std::string& name : split(list))
        objects.push_back(translator.toEnglish(name));
    return status;
}

PDH_STATUS krListCounterItems(const std::string& object, std::vector<std::string>& counters,
                              std::vector<std::string>& instances)
{
    if (!canList())
    {
        for (const KnownCounter& known : knownCounters)
        {
            if (lstrcmpiA(known.object, object.c_str()) != 0 || !isThere(known))
                continue;
            addOnce(counters, known.counter);
            addOnce(instances, known.instance);
        }
        return ERROR_SUCCESS;
    }
    const Translator translator;
    auto status = static_cast<PDH_STATUS>(PDH_CSTATUS_NO_OBJECT);
    for (const std::string& local : translator.toLocal(object))
    {
        std::string counterList;
        std::string instanceList;
        status = enumerateItems(local, counterList, instanceList);
        if (status != ERROR_SUCCESS)
            continue;
        for (const std::string& name : split(counterList))
            counters.push_back(translator.toEnglish(name));
        instances = split(instanceList);
        break;
    }
    return status;
}

PDH_STATUS krGetCounterValue(PDH_HCOUNTER counter, DWORD& status, double& value) noexcept
{
    // Wine writes the bits of an integer where a double is asked for.
    const DWORD type = canList() ? PDH_FMT_DOUBLE : PDH_FMT_LARGE;
    PDH_FMT_COUNTERVALUE formatted{};
    const PDH_STATUS result = PdhGetFormattedCounterValue(
        counter, type | PDH_FMT_NOSCALE | PDH_FMT_NOCAP100, nullptr, &formatted);
    status = formatted.CStatus;
    value = canList() ? formatted.doubleValue : static_cast<double>(formatted.largeValue);
    return result;
}

std::string krDescribeCounterStatus(DWORD status)
{
    if (getLibrary() == nullptr)
        return "pdh.dll cannot be loaded.";
    char text[512];
    const DWORD length = FormatMessageA(
        FORMAT_MESSAGE_FROM_HMODULE | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK,
        getLibrary(), status, 0, text, sizeof text, nullptr);
    std::string result(text, length);
    result.erase(result.find_last_not_of(" \r\n") + 1);
    return result;
}

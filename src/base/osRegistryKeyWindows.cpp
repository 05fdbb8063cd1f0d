#include <base/osRegistryKey.h>
#include <base/raise.h>

#include <platform/platform.h>

#include <algorithm>
#include <string_view>

namespace Kr
{

namespace
{

using WideText = std::basic_string<WCHAR>;

struct TypeEntry
{
    OsRegistryKey::ValueType type;
    DWORD system;
    std::size_t size; ///< of the data, if there is only one
    bool isText;
};

/// The first entry of a type is the one to store.
constexpr TypeEntry types[] = {
    {OsRegistryKey::ValueType::Text, REG_SZ, 0, true},
    {OsRegistryKey::ValueType::Text, REG_EXPAND_SZ, 0, true},
    {OsRegistryKey::ValueType::TextList, REG_MULTI_SZ, 0, true},
    {OsRegistryKey::ValueType::Integer32, REG_DWORD, 4, false},
    {OsRegistryKey::ValueType::Integer64, REG_QWORD, 8, false},
    {OsRegistryKey::ValueType::Bytes, REG_BINARY, 0, false},
};

/// False if the text is not UTF-8.
bool widen(std::string_view text, WideText& wide)
{
    const int length = static_cast<int>(text.size());
    wide.resize(text.size()); // never longer than that
    if (length == 0)
        return true;
    const int size = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), length,
                                         wide.data(), length);
    wide.resize(static_cast<std::size_t>(size));
    return size != 0;
}

/// False if the text is malformed and `flags` say that it must not be.
bool narrow(const WCHAR* wide, std::size_t length, DWORD flags, std::string& text)
{
    text.resize(3 * length); // never longer than that
    if (length == 0)
        return true;
    const int size =
        WideCharToMultiByte(CP_UTF8, flags, wide, static_cast<int>(length), text.data(),
                            static_cast<int>(text.size()), nullptr, nullptr);
    text.resize(static_cast<std::size_t>(size));
    return size != 0;
}

WideText widenName(const char* name)
{
    WideText wide;
    if (!widen(name, wide))
        raise<OsRegistryKeyEx::ExInvalidName>(KR_HERE, name, "it is not UTF-8");
    return wide;
}

std::string narrowName(const WCHAR* name, DWORD length)
{
    std::string text;
    narrow(name, length, 0, text);
    return text;
}

bool isMissing(LSTATUS status)
{
    return status == ERROR_FILE_NOT_FOUND || status == ERROR_PATH_NOT_FOUND;
}

void check(LSTATUS status, const char* action, const std::string& name)
{
    if (status == ERROR_SUCCESS)
        return;
    const bool isDamaged = status == ERROR_REGISTRY_CORRUPT;
    raise<OsRegistryKeyEx::ExRefused>(KR_HERE, action, name.c_str(),
                                      static_cast<unsigned long>(status),
                                      isDamaged ? krRegistryDetail() : "");
}

/// Calls `enumerate` with one index after the other until there are no more names.
template <class Enumerate>
Vector<std::string> listNames(std::size_t longest, const std::string& path, Enumerate enumerate)
{
    Vector<std::string> names;
    WideText name(longest + 1, WCHAR());
    for (DWORD index = 0;; ++index)
    {
        DWORD length = static_cast<DWORD>(name.size());
        const LSTATUS status = enumerate(index, name.data(), &length);
        if (status == ERROR_NO_MORE_ITEMS)
            return names;
        check(status, "list the key", path);
        names.push_back(narrowName(name.data(), length));
    }
}

std::string describeValue(const std::string& path, const char* name)
{
    return path + '\\' + name;
}

/// Reads a value's data, of any size.
LSTATUS queryData(void* key, const WideText& name, DWORD& type, WideText& data, DWORD& size)
{
    data.resize(128);
    for (;;)
    {
        size = static_cast<DWORD>(data.size() * sizeof(WCHAR));
        const LSTATUS status = RegQueryValueExW(static_cast<HKEY>(key), name.c_str(), nullptr,
                                                &type, reinterpret_cast<BYTE*>(data.data()), &size);
        if (status != ERROR_MORE_DATA)
            return status;
        data.resize(size / sizeof(WCHAR) + 1);
    }
}

} // namespace

void* OsRegistryKey::getRootHandle(Root root) noexcept
{
    return root == Root::User ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
}

void* OsRegistryKey::performOpen(void* base, const char* path, Mode mode,
                                 const std::string& fullPath)
{
    const WideText wide = widenName(path);
    const REGSAM access = mode == Mode::Read ? KEY_READ : KEY_READ | KEY_WRITE | DELETE;
    HKEY key = nullptr;
    const LSTATUS status =
        mode == Mode::Create
            ? RegCreateKeyExW(static_cast<HKEY>(base), wide.c_str(), 0, nullptr, 0, access, nullptr,
                              &key, nullptr)
            : RegOpenKeyExW(static_cast<HKEY>(base), wide.c_str(), 0, access, &key);
    if (mode != Mode::Create && isMissing(status))
        return nullptr;
    check(status, mode == Mode::Create ? "create the key" : "open the key", fullPath);
    return key;
}

void OsRegistryKey::performClose(void* handle) noexcept
{
    RegCloseKey(static_cast<HKEY>(handle));
}

bool OsRegistryKey::performRemoveKey(void* base, const char* path, const std::string& fullPath)
{
    const LSTATUS status = RegDeleteTreeW(static_cast<HKEY>(base), widenName(path).c_str());
    if (isMissing(status))
        return false;
    check(status, "remove the key", fullPath);
    return true;
}

bool OsRegistryKey::performQuery(const char* name, Stored& stored) const
{
    DWORD type = 0;
    DWORD size = 0;
    WideText data;
    const LSTATUS status = queryData(_handle, widenName(name), type, data, size);
    if (isMissing(status))
        return false;
    check(status, "read", describeValue(_path, name));
    const auto entry = std::find_if(std::begin(types), std::end(types),
                                    [&](const TypeEntry& e) { return e.system == type; });
    bool isGood = entry != std::end(types) && (entry->size == 0 || entry->size == size);
    if (isGood && entry->isText)
        isGood = size % sizeof(WCHAR) == 0 &&
                 narrow(data.data(), size / sizeof(WCHAR), WC_ERR_INVALID_CHARS, stored.bytes);
    else
        stored.bytes.assign(reinterpret_cast<const char*>(data.data()), size);
    stored.type = isGood ? entry->type : ValueType::Other;
    return true;
}

void OsRegistryKey::performStore(const char* name, const Stored& stored)
{
    const auto entry = std::find_if(std::begin(types), std::end(types),
                                    [&](const TypeEntry& e) { return e.type == stored.type; });
    WideText wide;
    if (entry->isText && !widen(stored.bytes, wide))
        raise<OsRegistryKeyEx::ExInvalidValue>(KR_HERE, getPath(), name, "a text is not UTF-8");
    const void* const data =
        entry->isText ? static_cast<const void*>(wide.data()) : stored.bytes.data();
    const std::size_t size = entry->isText ? wide.size() * sizeof(WCHAR) : stored.bytes.size();
    check(RegSetValueExW(static_cast<HKEY>(_handle), widenName(name).c_str(), 0, entry->system,
                         static_cast<const BYTE*>(data), static_cast<DWORD>(size)),
          "store", describeValue(_path, name));
}

bool OsRegistryKey::performRemoveValue(const char* name)
{
    const LSTATUS status = RegDeleteValueW(static_cast<HKEY>(_handle), widenName(name).c_str());
    if (isMissing(status))
        return false;
    check(status, "remove", describeValue(_path, name));
    return true;
}

Vector<std::string> OsRegistryKey::performListKeys() const
{
    return listNames(OsRegistryLimits::keyNameLength, _path,
                     [&](DWORD index, WCHAR* name, DWORD* length)
                     {
                         return RegEnumKeyExW(static_cast<HKEY>(_handle), index, name, length,
                                              nullptr, nullptr, nullptr, nullptr);
                     });
}

Vector<std::string> OsRegistryKey::performListValues() const
{
    return listNames(OsRegistryLimits::valueNameLength, _path,
                     [&](DWORD index, WCHAR* name, DWORD* length)
                     {
                         return RegEnumValueW(static_cast<HKEY>(_handle), index, name, length,
                                              nullptr, nullptr, nullptr, nullptr);
                     });
}

} // namespace Kr

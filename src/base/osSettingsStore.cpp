#include <base/osSettingsStore.h>

#include <base/inSettings.h>

#include <iostream>

namespace Kr
{

namespace
{

using Root = OsRegistryKey::Root;
using ValueType = OsRegistryKey::ValueType;

void report(const std::string& key, const OsRegistryKeyEx& error)
{
    std::cout << "The settings in the key '" << key << "' are skipped: " << error.getReason()
              << std::endl;
}

InSettingsStore::Entry read(const OsRegistryKey& key, const char* handle)
{
    const std::string origin = std::string("key ") + key.getPath();
    switch (key.getType(handle))
    {
    case ValueType::Text:
        return {origin, key.getText(handle), true};
    case ValueType::Integer32:
    case ValueType::Integer64:
        return {origin, std::to_string(key.getInteger64(handle)), true};
    case ValueType::TextList:
        return {origin, "(a list of texts)", false};
    case ValueType::Bytes:
        return {origin, "(bytes)", false};
    case ValueType::Other:
        break;
    }
    return {origin, "(malformed)", false};
}

} // namespace

OsSettingsStore::OsSettingsStore(const char* path)
    : _path(path != nullptr ? path : "")
    , _user(open(Root::User))
    , _machine(open(Root::Machine))
    , _previous(InSettings::setStore(this))
{
}

OsSettingsStore::~OsSettingsStore()
{
    InSettings::setStore(_previous);
}

std::optional<OsRegistryKey> OsSettingsStore::open(Root root) const
{
    try
    {
        if (OsRegistryKey::exists(root, _path.c_str()))
            return OsRegistryKey(root, _path.c_str());
    }
    catch (const OsRegistryKeyEx::ExRefused& error)
    {
        report(_path, error);
    }
    return std::nullopt;
}

Vector<InSettingsStore::Entry> OsSettingsStore::find(const std::string& handle)
{
    Vector<Entry> entries;
    addEntry(_user, handle.c_str(), entries);
    addEntry(_machine, handle.c_str(), entries);
    return entries;
}

void OsSettingsStore::addEntry(std::optional<OsRegistryKey>& key, const char* handle,
                               Vector<Entry>& entries)
{
    if (!key.has_value())
        return;
    try
    {
        if (key->hasValue(handle))
            entries.push_back(read(*key, handle));
    }
    catch (const OsRegistryKeyEx::ExInvalidName&)
    {
        // Such a handle is never stored.
    }
    catch (const OsRegistryKeyEx& error)
    {
        report(key->getPath(), error);
        key.reset();
    }
}

void OsSettingsStore::save(const std::string& handle, const std::string& text,
                           const std::string& defaultText)
{
    Vector<Entry> hidden;
    addEntry(_machine, handle.c_str(), hidden);
    const std::string& otherwise =
        !hidden.empty() && hidden.front().isText ? hidden.front().text : defaultText;
    if (text != otherwise)
        OsRegistryKey(Root::User, _path.c_str(), OsRegistryKey::Mode::Create)
            .setText(handle.c_str(), text);
    else if (OsRegistryKey::exists(Root::User, _path.c_str()))
        OsRegistryKey(Root::User, _path.c_str(), OsRegistryKey::Mode::Write)
            .removeValue(handle.c_str());
    _user = open(Root::User); // it may be new
}

} // namespace Kr

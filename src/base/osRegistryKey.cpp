#include <base/osRegistryKey.h>

#include <base/assert.h>
#include <base/raise.h>

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>

namespace Kr
{

namespace
{

using Limits = OsRegistryLimits;

constexpr char separator = '\\';

/// How many characters a text has in UTF-16, if it is well-formed.
std::size_t countCharacters(std::string_view text)
{
    std::size_t count = 0;
    for (const char c : text)
    {
        const auto byte = static_cast<unsigned char>(c);
        const bool isContinuation = byte >= 0x80 && byte < 0xC0;
        count += isContinuation ? 0 : byte >= 0xF0 ? 2 : 1;
    }
    return count;
}

void checkPath(const char* path)
{
    KR_ASSERT(path != nullptr);
    std::string_view rest = path;
    for (std::size_t depth = 1; !rest.empty(); ++depth)
    {
        const std::size_t length = std::min(rest.find(separator), rest.size());
        if (length == 0 || length + 1 == rest.size())
            raise<OsRegistryKeyEx::ExInvalidName>(KR_HERE, path, "a name in the path is empty");
        if (countCharacters(rest.substr(0, length)) > Limits::keyNameLength)
            raise<OsRegistryKeyEx::ExInvalidName>(KR_HERE, path,
                                                  "a name has more than 255 characters");
        if (depth > Limits::pathDepth)
            raise<OsRegistryKeyEx::ExInvalidName>(KR_HERE, path, "the path has more than 32 names");
        rest.remove_prefix(std::min(length + 1, rest.size()));
    }
}

void checkName(const char* name)
{
    KR_ASSERT(name != nullptr);
    if (countCharacters(name) > Limits::valueNameLength)
        raise<OsRegistryKeyEx::ExInvalidName>(KR_HERE, name, "it has more than 16383 characters");
}

std::string join(const std::string& parent, const char* path)
{
    return *path != '\0' ? parent + separator + path : parent;
}

/// The bytes of an integer; the least significant one is the first.
template <class Integer>
std::string toBytes(Integer value)
{
    std::string bytes(sizeof value, '\0');
    std::memcpy(bytes.data(), &value, sizeof value);
    return bytes;
}

template <class Integer>
Integer fromBytes(const std::string& bytes)
{
    Integer value = 0;
    std::memcpy(&value, bytes.data(), sizeof value);
    return value;
}

} // namespace

// --- opening and closing ------------------------------------------------------------------------

OsRegistryKey::OsRegistryKey(Root root, const char* path, Mode mode)
    : _mode(mode)
{
    checkPath(path);
    _path = join(getName(root), path);
    _handle = performOpen(getRootHandle(root), path, mode, _path);
    if (_handle == nullptr)
        raise<OsRegistryKeyEx::ExNoKey>(KR_HERE, getPath());
}

OsRegistryKey::OsRegistryKey(const OsRegistryKey& parent, const char* path, Mode mode)
    : _mode(mode)
{
    parent.checkOpen();
    checkPath(path);
    _path = join(parent._path, path);
    _handle = performOpen(parent._handle, path, mode, _path);
    if (_handle == nullptr)
        raise<OsRegistryKeyEx::ExNoKey>(KR_HERE, getPath());
}

OsRegistryKey::OsRegistryKey(OsRegistryKey&& other) noexcept
    : _handle(std::exchange(other._handle, nullptr))
    , _path(std::move(other._path))
    , _mode(other._mode)
{
}

OsRegistryKey& OsRegistryKey::operator=(OsRegistryKey&& other) noexcept
{
    OsRegistryKey taken(std::move(other));
    std::swap(_handle, taken._handle);
    std::swap(_path, taken._path);
    std::swap(_mode, taken._mode);
    return *this;
}

OsRegistryKey::~OsRegistryKey()
{
    if (_handle != nullptr)
        performClose(_handle);
}

void OsRegistryKey::checkOpen() const
{
    KR_ASSERT(_handle != nullptr);
}

void OsRegistryKey::checkWritable() const
{
    checkOpen();
    if (_mode == Mode::Read)
        raise<OsRegistryKeyEx::ExReadOnly>(KR_HERE, getPath());
}

const char* OsRegistryKey::getName(Root root) noexcept
{
    return root == Root::User ? "HKEY_CURRENT_USER" : "HKEY_LOCAL_MACHINE";
}

// --- keys ---------------------------------------------------------------------------------------

bool OsRegistryKey::exists(Root root, const char* path)
{
    checkPath(path);
    void* const handle =
        performOpen(getRootHandle(root), path, Mode::Read, join(getName(root), path));
    if (handle != nullptr)
        performClose(handle);
    return handle != nullptr;
}

bool OsRegistryKey::removeTree(Root root, const char* path)
{
    checkPath(path);
    KR_ASSERT(*path != '\0');
    return performRemoveKey(getRootHandle(root), path, join(getName(root), path));
}

bool OsRegistryKey::hasKey(const char* path) const
{
    checkOpen();
    checkPath(path);
    void* const handle = performOpen(_handle, path, Mode::Read, join(_path, path));
    if (handle != nullptr)
        performClose(handle);
    return handle != nullptr;
}

bool OsRegistryKey::removeKey(const char* path)
{
    checkWritable();
    checkPath(path);
    KR_ASSERT(*path != '\0');
    return performRemoveKey(_handle, path, join(_path, path));
}

Vector<std::string> OsRegistryKey::listKeys() const
{
    checkOpen();
    Vector<std::string> names = performListKeys();
    std::sort(names.begin(), names.end());
    return names;
}

// --- values -------------------------------------------------------------------------------------

bool OsRegistryKey::hasValue(const char* name) const
{
    Stored stored;
    checkOpen();
    checkName(name);
    return performQuery(name, stored);
}

OsRegistryKey::ValueType OsRegistryKey::getType(const char* name) const
{
    Stored stored;
    checkOpen();
    checkName(name);
    if (!performQuery(name, stored))
        raiseNoValue(name);
    return stored.type;
}

Vector<std::string> OsRegistryKey::listValues() const
{
    checkOpen();
    Vector<std::string> names = performListValues();
    std::sort(names.begin(), names.end());
    return names;
}

bool OsRegistryKey::removeValue(const char* name)
{
    checkWritable();
    checkName(name);
    return performRemoveValue(name);
}

const char* OsRegistryKey::describe(ValueType type) noexcept
{
    switch (type)
    {
    case ValueType::Text:
        return "a text";
    case ValueType::TextList:
        return "a list of texts";
    case ValueType::Integer32:
        return "a 32-bit integer";
    case ValueType::Integer64:
        return "a 64-bit integer";
    case ValueType::Bytes:
        return "bytes";
    case ValueType::Other:
        break;
    }
    return "malformed or of a type that is not supported";
}

void OsRegistryKey::raiseNoValue(const char* name) const
{
    raise<OsRegistryKeyEx::ExNoValue>(KR_HERE, getPath(), name);
}

template <class Value>
Value OsRegistryKey::require(std::optional<Value> found, const char* name) const
{
    if (!found.has_value())
        raiseNoValue(name);
    return *std::move(found);
}

std::optional<OsRegistryKey::Stored> OsRegistryKey::find(const char* name, ValueType expected) const
{
    std::optional<Stored> stored(std::in_place);
    checkOpen();
    checkName(name);
    if (!performQuery(name, *stored))
        return std::nullopt;
    const bool isNarrower =
        expected == ValueType::Integer64 && stored->type == ValueType::Integer32;
    if (stored->type != expected && !isNarrower)
        raise<OsRegistryKeyEx::ExWrongType>(KR_HERE, getPath(), name, describe(stored->type),
                                            describe(expected));
    return stored;
}

// --- reading ------------------------------------------------------------------------------------

/// Less the terminators, which others store with a text or not.
std::optional<std::string> OsRegistryKey::findText(const char* name) const
{
    std::optional<Stored> stored = find(name, ValueType::Text);
    if (!stored.has_value())
        return std::nullopt;
    stored->bytes.resize(stored->bytes.find_last_not_of('\0') + 1);
    return std::move(stored->bytes);
}

/// The last text may lack its terminator, and the list its own.
std::optional<Vector<std::string>> OsRegistryKey::findTextList(const char* name) const
{
    std::optional<Stored> stored = find(name, ValueType::TextList);
    if (!stored.has_value())
        return std::nullopt;
    std::string& bytes = stored->bytes;
    if (!bytes.empty() && bytes.back() == '\0')
        bytes.pop_back();
    Vector<std::string> texts;
    for (std::size_t begin = 0; begin < bytes.size(); begin += texts.back().size() + 1)
        texts.push_back(bytes.substr(begin, bytes.find('\0', begin) - begin));
    return texts;
}

std::optional<std::int32_t> OsRegistryKey::findInteger32(const char* name) const
{
    const std::optional<Stored> stored = find(name, ValueType::Integer32);
    if (!stored.has_value())
        return std::nullopt;
    return fromBytes<std::int32_t>(stored->bytes);
}

std::optional<std::int64_t> OsRegistryKey::findInteger64(const char* name) const
{
    const std::optional<Stored> stored = find(name, ValueType::Integer64);
    if (!stored.has_value())
        return std::nullopt;
    return stored->type == ValueType::Integer32 ? fromBytes<std::int32_t>(stored->bytes)
                                                : fromBytes<std::int64_t>(stored->bytes);
}

std::optional<Vector<std::uint8_t>> OsRegistryKey::findBytes(const char* name) const
{
    const std::optional<Stored> stored = find(name, ValueType::Bytes);
    if (!stored.has_value())
        return std::nullopt;
    return Vector<std::uint8_t>(stored->bytes.begin(), stored->bytes.end());
}

std::string OsRegistryKey::getText(const char* name) const
{
    return require(findText(name), name);
}

std::string OsRegistryKey::getText(const char* name, const std::string& defaultValue) const
{
    return findText(name).value_or(defaultValue);
}

Vector<std::string> OsRegistryKey::getTextList(const char* name) const
{
    return require(findTextList(name), name);
}

Vector<std::string> OsRegistryKey::getTextList(const char* name,
                                               const Vector<std::string>& defaultValue) const
{
    return findTextList(name).value_or(defaultValue);
}

std::int32_t OsRegistryKey::getInteger32(const char* name) const
{
    return require(findInteger32(name), name);
}

std::int32_t OsRegistryKey::getInteger32(const char* name, std::int32_t defaultValue) const
{
    return findInteger32(name).value_or(defaultValue);
}

std::int64_t OsRegistryKey::getInteger64(const char* name) const
{
    return require(findInteger64(name), name);
}

std::int64_t OsRegistryKey::getInteger64(const char* name, std::int64_t defaultValue) const
{
    return findInteger64(name).value_or(defaultValue);
}

Vector<std::uint8_t> OsRegistryKey::getBytes(const char* name) const
{
    return require(findBytes(name), name);
}

Vector<std::uint8_t> OsRegistryKey::getBytes(const char* name,
                                             const Vector<std::uint8_t>& defaultValue) const
{
    return findBytes(name).value_or(defaultValue);
}

// --- storing ------------------------------------------------------------------------------------

void OsRegistryKey::store(const char* name, ValueType type, const std::string& bytes)
{
    checkWritable();
    checkName(name);
    const bool isText = type == ValueType::Text || type == ValueType::TextList;
    const std::size_t size = isText ? 2 * countCharacters(bytes) : bytes.size();
    if (size > Limits::valueSize)
        raise<OsRegistryKeyEx::ExInvalidValue>(KR_HERE, getPath(), name,
                                               "it has more than 1048576 bytes");
    performStore(name, {type, bytes});
}

/// The text with its terminator.
std::string OsRegistryKey::checkText(const char* name, const std::string& text) const
{
    if (text.find('\0') != text.npos)
        raise<OsRegistryKeyEx::ExInvalidValue>(KR_HERE, getPath(), name,
                                               "a text holds a null character");
    return text + '\0';
}

void OsRegistryKey::setText(const char* name, const std::string& value)
{
    store(name, ValueType::Text, checkText(name, value));
}

void OsRegistryKey::setTextList(const char* name, const Vector<std::string>& value)
{
    std::string bytes;
    for (const std::string& text : value)
        bytes += checkText(name, text);
    store(name, ValueType::TextList, bytes + '\0');
}

void OsRegistryKey::setInteger32(const char* name, std::int32_t value)
{
    store(name, ValueType::Integer32, toBytes(value));
}

void OsRegistryKey::setInteger64(const char* name, std::int64_t value)
{
    store(name, ValueType::Integer64, toBytes(value));
}

void OsRegistryKey::setBytes(const char* name, const Vector<std::uint8_t>& value)
{
    store(name, ValueType::Bytes, std::string(value.begin(), value.end()));
}

} // namespace Kr

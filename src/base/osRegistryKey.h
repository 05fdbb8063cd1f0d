#pragma once

/// @file
/// A key of the registry, where programs keep what they have to remember: typed values under a
/// name, and further keys.
/// @code
/// using Kr::OsRegistryKey;
///
/// OsRegistryKey key(OsRegistryKey::Root::User, "Software\\Maker\\Viewer",
///                   OsRegistryKey::Mode::Create);
/// key.setInteger32("Width", 1280);
/// key.setTextList("Recent", {"a.scene", "b.scene"});
/// const int width = key.getInteger32("Width", 800); // 800 where nothing is stored
/// std::cout << key.getPath() << ": " << width << '\n';
/// @endcode
/// A path names one key after the other, with the backslash between them; an empty path is the key
/// that it starts from. Names and texts are UTF-8. Names are the same whatever the case of the
/// letters A to Z, and are kept as they were first written.
///
/// Each operation stands for itself: others, in this process or another one, see all of a value or
/// nothing of it, and of two who write at once one wins, without taking along what the other has
/// not touched. On a POSIX host the keys are files below the user's and the machine's
/// configuration folders (docs/settings-store.md).
///
/// Pitfalls: a key that others have removed raises `ExRefused` until it is opened again. Of a list
/// that holds an empty text, other programs may read the texts before that one only. A 32-bit
/// program has a machine's root of its own on a 64-bit Windows. The operations of one key may be
/// used by several threads at once, but for moving and destroying it.

#include <base/krBaseApi.h>
#include <base/osRegistryKeyEx.h>
#include <base/vector.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace Kr
{

/// What fits into the registry. Characters are those of UTF-16.
struct OsRegistryLimits
{
    static constexpr std::size_t keyNameLength = 255; ///< characters of each name in a path
    static constexpr std::size_t pathDepth = 32;      ///< names in one path
    static constexpr std::size_t valueNameLength = 16383;
    static constexpr std::size_t valueSize = 1 << 20; ///< bytes, of texts in UTF-16
};

class KR_BASE_API OsRegistryKey
{
public:
    enum class Root
    {
        User,   ///< HKEY_CURRENT_USER
        Machine ///< HKEY_LOCAL_MACHINE, which only administrators may change
    };

    enum class Mode
    {
        Read,  ///< the key has to be there
        Write, ///< likewise
        Create ///< as `Write`; makes the keys of the path that are missing
    };

    enum class ValueType
    {
        Text, ///< also one that stands for others, such as "%TEMP%": it is given as it is
        TextList,
        Integer32,
        Integer64,
        Bytes,
        Other ///< what this class does not read, or what is malformed for its type
    };

    /// Opens a key. Raises `ExNoKey`, `ExInvalidName` for a path beyond the limits, with an empty
    /// name or not in UTF-8, `ExInternalError` for null, and `ExRefused`.
    OsRegistryKey(Root root, const char* path, Mode mode = Mode::Read);
    /// The same for a path that starts from another key.
    OsRegistryKey(const OsRegistryKey& parent, const char* path, Mode mode = Mode::Read);

    OsRegistryKey(OsRegistryKey&& other) noexcept;
    OsRegistryKey& operator=(OsRegistryKey&& other) noexcept;
    OsRegistryKey(const OsRegistryKey&) = delete;
    OsRegistryKey& operator=(const OsRegistryKey&) = delete;
    ~OsRegistryKey();

    /// The whole path, the root's name first.
    const char* getPath() const noexcept { return _path.c_str(); }

    // Keys

    static bool exists(Root root, const char* path);

    /// Removes a key with its values and all keys below. False if there is none.
    static bool removeTree(Root root, const char* path);

    bool hasKey(const char* path) const;
    bool removeKey(const char* path); ///< as `removeTree`
    /// The names of the keys right below, sorted by their bytes.
    Vector<std::string> listKeys() const;

    // Values. The empty name is one, too. All raise `ExInvalidName` and `ExRefused`.

    bool hasValue(const char* name) const;
    ValueType getType(const char* name) const; ///< raises `ExNoValue`
    Vector<std::string> listValues() const;    ///< the names, sorted by their bytes
    bool removeValue(const char* name);        ///< false if there is none

    /// The value; the default, or `ExNoValue`, where there is none. One of another type raises
    /// `ExWrongType`, default or not.
    std::string getText(const char* name) const;
    std::string getText(const char* name, const std::string& defaultValue) const;
    Vector<std::string> getTextList(const char* name) const;
    Vector<std::string> getTextList(const char* name,
                                    const Vector<std::string>& defaultValue) const;
    std::int32_t getInteger32(const char* name) const;
    std::int32_t getInteger32(const char* name, std::int32_t defaultValue) const;
    /// Takes a 32-bit integer, too.
    std::int64_t getInteger64(const char* name) const;
    std::int64_t getInteger64(const char* name, std::int64_t defaultValue) const;
    Vector<std::uint8_t> getBytes(const char* name) const;
    Vector<std::uint8_t> getBytes(const char* name, const Vector<std::uint8_t>& defaultValue) const;

    /// Stores a value, in the place of one of whatever type. When it raises, the old one stays.
    /// Raises `ExReadOnly`, and `ExInvalidValue` for what is too large and for texts that are not
    /// UTF-8 or hold a null character.
    void setText(const char* name, const std::string& value);
    void setTextList(const char* name, const Vector<std::string>& value);
    void setInteger32(const char* name, std::int32_t value);
    void setInteger64(const char* name, std::int64_t value);
    void setBytes(const char* name, const Vector<std::uint8_t>& value);

private:
    /// What the registry holds, but texts in UTF-8: each with its terminator, and one behind a
    /// list.
    struct Stored
    {
        ValueType type = ValueType::Other;
        std::string bytes;
    };

    static const char* describe(ValueType type) noexcept;
    static const char* getName(Root root) noexcept;

    std::optional<Stored> find(const char* name, ValueType expected) const;
    std::optional<std::string> findText(const char* name) const;
    std::optional<Vector<std::string>> findTextList(const char* name) const;
    std::optional<std::int32_t> findInteger32(const char* name) const;
    std::optional<std::int64_t> findInteger64(const char* name) const;
    std::optional<Vector<std::uint8_t>> findBytes(const char* name) const;
    std::string checkText(const char* name, const std::string& text) const;
    void store(const char* name, ValueType type, const std::string& bytes);
    void checkOpen() const;
    void checkWritable() const;
    [[noreturn]] void raiseNoValue(const char* name) const;
    template <class Value>
    Value require(std::optional<Value> found, const char* name) const;

    // Handles are the system's; null stands for none.
    static void* getRootHandle(Root root) noexcept;
    static void* performOpen(void* base, const char* path, Mode mode, const std::string& fullPath);
    static void performClose(void* handle) noexcept;
    static bool performRemoveKey(void* base, const char* path, const std::string& fullPath);
    bool performQuery(const char* name, Stored& stored) const;
    void performStore(const char* name, const Stored& stored);
    bool performRemoveValue(const char* name);
    Vector<std::string> performListKeys() const;
    Vector<std::string> performListValues() const;

    void* _handle = nullptr;
    std::string _path;
    Mode _mode = Mode::Read;
};

} // namespace Kr

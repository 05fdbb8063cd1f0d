#pragma once

/// @file
/// The program's settings in the registry.
/// @code{.cpp}
/// #include <base/inInitGuard.h>
/// #include <base/inVariable.h>
///
/// Kr::InPackageInitBase& viewer(); // where the package's InInit object stands
///
/// static Kr::InVariable<int> samples(viewer(), "viewer.samples", 4, "Samples per pixel", {1, 64});
///
/// int main(int argc, char** argv)
/// {
///     const Kr::OsSettingsStore store("Software\\Maker\\Viewer"); // before any package starts
///     const Kr::InInitGuard guard(argc, argv);
///     samples.setStored(8); // for the next start
///     return 0;
/// }
/// @endcode
/// While the object lives, an initialisation variable that neither an override nor the command line
/// nor the environment gives a value takes it from the key: the value that bears the variable's
/// handle, in the user's root, else in the machine's, where administrators leave what holds for
/// everybody. A text is read as in the environment, an integer counts as its decimal text.
///
/// What is stored goes to the user's root. A text that the variable would find there anyway, the
/// machine's or the default, is not stored but removed, so that later versions' defaults and the
/// machine's settings reach those who have not decided otherwise.
///
/// Pitfalls: handles that differ in the case of their letters only share a value. A store that
/// cannot be read is reported on the standard output and counts as empty; storing in it raises.

#include <base/inSettingsStore.h>
#include <base/osRegistryKey.h>

namespace Kr
{

class KR_BASE_API OsSettingsStore : public InSettingsStore
{
public:
    /// Makes the key of that path the store of the process (`InSettings::setStore`), until the
    /// object is destroyed. The key need not exist. Raises as `OsRegistryKey` does for names.
    explicit OsSettingsStore(const char* path);
    ~OsSettingsStore() override;

    Vector<Entry> find(const std::string& handle) override;

    /// Raises as `OsRegistryKey` does.
    void save(const std::string& handle, const std::string& text,
              const std::string& defaultText) override;

private:
    std::optional<OsRegistryKey> open(OsRegistryKey::Root root) const;
    static void addEntry(std::optional<OsRegistryKey>& key, const char* handle,
                         Vector<Entry>& entries);

    std::string _path;
    std::optional<OsRegistryKey> _user; // none where there is no key, or one that cannot be read
    std::optional<OsRegistryKey> _machine;
    InSettingsStore* _previous;
};

} // namespace Kr

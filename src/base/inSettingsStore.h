#pragma once

/// @file
/// What keeps settings from one run of the program to the next: the source of initialisation
/// variables between the environment and the defaults.
/// @code{.cpp}
/// #include <base/inSettings.h>
///
/// #include <map>
///
/// /// Keeps settings for the time of a test.
/// class MemoryStore : public Kr::InSettingsStore
/// {
/// public:
///     MemoryStore() { Kr::InSettings::setStore(this); }
///     ~MemoryStore() override { Kr::InSettings::setStore(nullptr); }
///
///     Kr::Vector<Entry> find(const std::string& handle) override
///     {
///         const auto text = _texts.find(handle);
///         if (text == _texts.end())
///             return {};
///         return {{"the test", text->second, true}};
///     }
///     void save(const std::string& handle, const std::string& text, const std::string&) override
///     {
///         _texts[handle] = text;
///     }
///
/// private:
///     std::map<std::string, std::string> _texts;
/// };
/// @endcode
/// Programs use `OsSettingsStore`, which keeps them in the registry.

#include <base/krBaseApi.h>
#include <base/vector.h>

#include <string>

namespace Kr
{

class KR_BASE_API InSettingsStore
{
public:
    /// What is stored for a variable.
    struct Entry
    {
        std::string origin; ///< where, in words, such as "key HKEY_CURRENT_USER\Software\Viewer"
        std::string text;
        bool isText; ///< false: `text` only says what stands there, which cannot be a value
    };

    InSettingsStore() = default;
    InSettingsStore(const InSettingsStore&) = delete;
    InSettingsStore& operator=(const InSettingsStore&) = delete;
    virtual ~InSettingsStore();

    /// What is stored for the variable of that handle, the entry that takes precedence first. Does
    /// not raise when it cannot be read: it reports that on the standard output, once.
    virtual Vector<Entry> find(const std::string& handle) = 0;

    /// Stores a text, so that a start finds it when no source before the store gives a value.
    /// @param defaultText what it would find if nothing were stored: that is not worth storing
    virtual void save(const std::string& handle, const std::string& text,
                      const std::string& defaultText) = 0;
};

} // namespace Kr

#pragma once

/// @file
/// Initialisation variables: the typed settings of a package.
///
/// A variable is a static object in the source of its package, below the package's object. It has a
/// handle that is unique in the process, a default and a line of help:
/// @code{.cpp}
/// enum class Shading
/// {
///     Flat,
///     Smooth
/// };
/// Kr::InPackageInitBase& viewer(); // where the package's InInit object stands
///
/// static Kr::InVariable<int> samples(viewer(), "viewer.samples", 4, "Samples per pixel", {1, 64});
/// static Kr::InVariable<bool> vsync(viewer(), "viewer.vsync", true, "Wait for the display");
/// static Kr::InVariable<Shading> shading(viewer(), "viewer.shading", Shading::Smooth, "Shading",
///                                        {{"flat", Shading::Flat}, {"smooth", Shading::Smooth}});
///
/// bool isFast() { return shading.getValue() == Shading::Flat && samples.getValue() == 1; }
/// @endcode
///
/// When the package starts, each of its variables takes its value from the first of these that
/// gives one:
/// 1. an override that code made beforehand (`setOverride`);
/// 2. the command line: `--viewer.samples=8` or `--viewer.samples 8`, and for a `bool`
///    `--viewer.vsync`, `--no-viewer.vsync` or `--viewer.vsync=off`. The value in the next word may
///    begin with one dash but not with two. When an option is repeated the last one wins;
/// 3. the environment, as it was when the process began;
/// 4. the store that the program has named, if any (osSettingsStore.h);
/// 5. the default.
///
/// A variable has an environment name and shorter options when a context alias gives them
/// (inContextAlias.h). The forms of the values are those of `InValueForm`; a number takes an
/// inclusive range, an enumeration its names.
///
/// Pitfalls: a variable must be constructed after its package and destroyed before it, which holds
/// when it stands below it in the same source; a variable in another source names the package by a
/// function that holds it as a local static. Variables that are constructed after their package has
/// started never start. Reading is free of locks and may be done by any thread while the package is
/// up; everything else is not for use by several threads.

#include <base/inSettings.h>
#include <base/internal/init/inNamedVariable.h>
#include <base/internal/init/inValueForm.h>
#include <base/krBaseApi.h>

#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace Kr
{

/// @tparam T `bool`, an integer of any size, `float`, `double`, `std::string` or an enumeration
template <class T>
class InVariable : public InNamedVariable
{
public:
    /// @param package the package that the variable belongs to
    /// @param handle a name without "=", such as "viewer.samples"; copied
    /// @param defaultValue when the form does not allow it, the variable has to be given: without
    ///        another source, reading it raises
    /// @param help one line on what the setting means; copied
    /// @param form what values are valid and how they are written
    ///
    /// Raises `InEx::ExHandleAlreadyInUse`, and `ExInternalError` when the handle is null, empty or
    /// holds "=".
    InVariable(InPackageInitBase& package, const char* handle, T defaultValue, const char* help,
               InValueForm<T> form = {});

    /// The value. Raises `InEx::ExInvalidObject` when the package's last start found no valid one,
    /// and `InEx::ExUninitializedObject` while the package is not starting or up, also after a
    /// start that failed.
    const T& getValue() const;

    const T& getDefault() const noexcept;

    /// Gives the variable its value ahead of every other source. A value that the form does not
    /// allow raises when the package starts. Raises `InEx::ExVariableAlreadyInitialized` when it
    /// has started.
    void setOverride(const T& value);

    /// Stores a value for the next start, in this program's store; the value of this run stays as
    /// it is. Raises `InVariableEx::ExMalformedValue` for one that the form does not allow, and as
    /// `store` does.
    void setStored(const T& value);

    bool isFlag() const override;
    bool isDefaultValid() const override;
    std::string getDefaultText() const override;
    std::string getExpectedForm() const override;

private:
    bool readText(std::string_view text, bool takes) override;
    void takeDefault() override;
    std::string getValueText() const override;

    InValueForm<T> _form;
    T _default;
    T _value;
};

extern template class KR_BASE_API InVariable<bool>;
extern template class KR_BASE_API InVariable<signed char>;
extern template class KR_BASE_API InVariable<unsigned char>;
extern template class KR_BASE_API InVariable<short>;
extern template class KR_BASE_API InVariable<unsigned short>;
extern template class KR_BASE_API InVariable<int>;
extern template class KR_BASE_API InVariable<unsigned int>;
extern template class KR_BASE_API InVariable<long>;
extern template class KR_BASE_API InVariable<unsigned long>;
extern template class KR_BASE_API InVariable<long long>;
extern template class KR_BASE_API InVariable<unsigned long long>;
extern template class KR_BASE_API InVariable<float>;
extern template class KR_BASE_API InVariable<double>;
extern template class KR_BASE_API InVariable<std::string>;

// --- bodies -------------------------------------------------------------------------------------

template <class T>
InVariable<T>::InVariable(InPackageInitBase& package, const char* handle, T defaultValue,
                          const char* help, InValueForm<T> form)
    : InNamedVariable(package, handle, help)
    , _form(std::move(form))
    , _default(std::move(defaultValue))
    , _value(_default)
{
}

template <class T>
const T& InVariable<T>::getValue() const
{
    checkReadable();
    return _value;
}

template <class T>
const T& InVariable<T>::getDefault() const noexcept
{
    return _default;
}

template <class T>
void InVariable<T>::setOverride(const T& value)
{
    InSettings::setOverride(getHandle(), _form.write(value).c_str());
}

template <class T>
void InVariable<T>::setStored(const T& value)
{
    storeText(_form.write(value));
}

template <class T>
bool InVariable<T>::isFlag() const
{
    return std::is_same_v<T, bool>;
}

template <class T>
bool InVariable<T>::isDefaultValid() const
{
    return _form.isValid(_default);
}

template <class T>
std::string InVariable<T>::getDefaultText() const
{
    return _form.write(_default);
}

template <class T>
std::string InVariable<T>::getExpectedForm() const
{
    return _form.getExpected();
}

template <class T>
bool InVariable<T>::readText(std::string_view text, bool takes)
{
    T ignored{};
    return _form.parse(text, takes ? _value : ignored);
}

template <class T>
void InVariable<T>::takeDefault()
{
    _value = _default;
}

template <class T>
std::string InVariable<T>::getValueText() const
{
    return _form.write(_value);
}

} // namespace Kr

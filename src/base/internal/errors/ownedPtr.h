#pragma once

/// @file
/// What `ObjPtr` and `ArrayPtr` have in common: exclusive ownership that a copy passes on. Use
/// those two names; this header only holds their body.

#include <cstddef>
#include <type_traits>

namespace Kr
{

/// How the two kinds of owner dispose of what they own, and which owners pass on to which.
struct DeleteObject
{
    template <class T>
    static void destroy(T* object) noexcept
    {
        static_assert(sizeof(T) != 0, "an incomplete type would be deleted without its destructor");
        delete object;
    }

    /// A derived object goes to an owner of its base, which deletes it through a virtual
    /// destructor.
    template <class From, class To>
    static constexpr bool canPass() noexcept
    {
        if constexpr (!std::is_convertible_v<From*, To*>)
            return false;
        else
            return std::is_same_v<std::remove_cv_t<From>, std::remove_cv_t<To>> ||
                   std::has_virtual_destructor_v<To>;
    }
};
struct DeleteArray
{
    template <class T>
    static void destroy(T* array) noexcept
    {
        delete[] array;
    }

    /// An array of a derived class is no array of its base.
    template <class From, class To>
    static constexpr bool canPass() noexcept
    {
        return std::is_convertible_v<From(*)[], To(*)[]>;
    }
};

/// An owner and the access to what it owns, without the ways in which owners are copied.
template <class T, class Deleter>
class OwnedPtrBase
{
public:
    OwnedPtrBase(const OwnedPtrBase&) = delete;
    OwnedPtrBase& operator=(const OwnedPtrBase&) = delete;

    bool isNull() const noexcept { return _object == nullptr; }
    /// Whether it owns something.
    explicit operator bool() const noexcept { return _object != nullptr; }
    T* get() const noexcept { return _object; }

    /// Gives the object up without deleting it.
    [[nodiscard]] T* release() noexcept
    {
        T* object = _object;
        _object = nullptr;
        return object;
    }

    friend bool operator==(const OwnedPtrBase& owner, std::nullptr_t) noexcept
    {
        return owner.isNull();
    }
    friend bool operator==(std::nullptr_t, const OwnedPtrBase& owner) noexcept
    {
        return owner.isNull();
    }
    friend bool operator!=(const OwnedPtrBase& owner, std::nullptr_t) noexcept
    {
        return !owner.isNull();
    }
    friend bool operator!=(std::nullptr_t, const OwnedPtrBase& owner) noexcept
    {
        return !owner.isNull();
    }

protected:
    explicit OwnedPtrBase(T* object) noexcept
        : _object(object)
    {
    }
    ~OwnedPtrBase() { Deleter::destroy(_object); }

    /// The former object is deleted last, when the owner no longer names it.
    void take(T* object) noexcept
    {
        T* const former = _object;
        _object = object;
        if (former != object)
            Deleter::destroy(former);
    }

private:
    T* _object;
};

/// The access that fits the kind of owner: an object has members, an array has elements.
template <class T, class Deleter>
class OwnedPtrAccess : public OwnedPtrBase<T, Deleter>
{
public:
    T& operator*() const noexcept { return *this->get(); }
    T* operator->() const noexcept { return this->get(); }

protected:
    using OwnedPtrBase<T, Deleter>::OwnedPtrBase;
};

template <class T>
class OwnedPtrAccess<T, DeleteArray> : public OwnedPtrBase<T, DeleteArray>
{
public:
    T& operator[](std::size_t index) const noexcept { return this->get()[index]; }

protected:
    using OwnedPtrBase<T, DeleteArray>::OwnedPtrBase;
};

template <class T, class Deleter>
class OwnedPtrRet;

template <class T, class Deleter>
class OwnedPtr : public OwnedPtrAccess<T, Deleter>
{
    using Base = OwnedPtrAccess<T, Deleter>;
    template <class Other>
    using IfPassed = std::enable_if_t<Deleter::template canPass<Other, T>(), int>;

public:
    OwnedPtr() noexcept
        : Base(nullptr)
    {
    }
    OwnedPtr(std::nullptr_t) noexcept // NOLINT: converting on purpose, as a plain pointer does
        : Base(nullptr)
    {
    }
    explicit OwnedPtr(T* object) noexcept
        : Base(object)
    {
    }
    OwnedPtr(OwnedPtr& other) noexcept
        : Base(other.release())
    {
    }
    OwnedPtr(OwnedPtr&& other) noexcept
        : Base(other.release())
    {
    }
    template <class Other, IfPassed<Other> = 0>
    OwnedPtr(OwnedPtr<Other, Deleter>& other) noexcept // NOLINT: as pointers convert
        : Base(other.release())
    {
    }
    template <class Other, IfPassed<Other> = 0>
    OwnedPtr(OwnedPtr<Other, Deleter>&& other) noexcept // NOLINT: as pointers convert
        : Base(other.release())
    {
    }
    template <class Other, IfPassed<Other> = 0>
    OwnedPtr(OwnedPtrRet<Other, Deleter> other) noexcept // NOLINT: a factory's result is stored
        : Base(other.release())
    {
    }

    OwnedPtr& operator=(OwnedPtr& other) noexcept { return takeFrom(other); }
    OwnedPtr& operator=(OwnedPtr&& other) noexcept { return takeFrom(other); }
    OwnedPtr& operator=(std::nullptr_t) noexcept
    {
        reset();
        return *this;
    }
    template <class Other, IfPassed<Other> = 0>
    OwnedPtr& operator=(OwnedPtr<Other, Deleter>& other) noexcept
    {
        return takeFrom(other);
    }
    template <class Other, IfPassed<Other> = 0>
    OwnedPtr& operator=(OwnedPtr<Other, Deleter>&& other) noexcept
    {
        return takeFrom(other);
    }
    template <class Other, IfPassed<Other> = 0>
    OwnedPtr& operator=(OwnedPtrRet<Other, Deleter> other) noexcept
    {
        return takeFrom(other);
    }

    /// Deletes the object and owns this one instead.
    void reset(T* object = nullptr) noexcept { this->take(object); }

private:
    template <class Owner>
    OwnedPtr& takeFrom(Owner& other) noexcept
    {
        this->take(other.release());
        return *this;
    }
};

/// A factory's result: ownership on its way to the caller.
template <class T, class Deleter>
class OwnedPtrRet : public OwnedPtrAccess<T, Deleter>
{
    using Base = OwnedPtrAccess<T, Deleter>;
    template <class Other>
    using IfPassed = std::enable_if_t<Deleter::template canPass<Other, T>(), int>;

public:
    OwnedPtrRet() noexcept
        : Base(nullptr)
    {
    }
    OwnedPtrRet(std::nullptr_t) noexcept // NOLINT: converting on purpose, `return nullptr;`
        : Base(nullptr)
    {
    }
    explicit OwnedPtrRet(T* object) noexcept
        : Base(object)
    {
    }
    OwnedPtrRet(OwnedPtrRet& other) noexcept
        : Base(other.release())
    {
    }
    OwnedPtrRet(OwnedPtrRet&& other) noexcept
        : Base(other.release())
    {
    }
    template <class Other, IfPassed<Other> = 0>
    OwnedPtrRet(OwnedPtr<Other, Deleter>& other) noexcept // NOLINT: `return pointer;` passes it on
        : Base(other.release())
    {
    }
    template <class Other, IfPassed<Other> = 0>
    OwnedPtrRet(OwnedPtr<Other, Deleter>&& other) noexcept // NOLINT: as above
        : Base(other.release())
    {
    }
    template <class Other, IfPassed<Other> = 0>
    OwnedPtrRet(OwnedPtrRet<Other, Deleter>&& other) noexcept // NOLINT: as pointers convert
        : Base(other.release())
    {
    }
    OwnedPtrRet& operator=(const OwnedPtrRet&) = delete;
};

} // namespace Kr

#pragma once

/// @file
/// What `ObjPtr` and `ArrayPtr` have in common: exclusive ownership that a copy passes on. Use
/// those two names; this header only holds their body.

#include <cstddef>

namespace Kr
{

/// How the two kinds of owner dispose of what they own.
struct DeleteObject
{
    template <class T>
    static void destroy(T* object) noexcept
    {
        static_assert(sizeof(T) != 0, "an incomplete type would be deleted without its destructor");
        delete object;
    }
};
struct DeleteArray
{
    template <class T>
    static void destroy(T* array) noexcept
    {
        delete[] array;
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
    T* get() const noexcept { return _object; }
    T& operator*() const noexcept { return *_object; }
    T* operator->() const noexcept { return _object; }
    T& operator[](std::size_t index) const noexcept { return _object[index]; }

    /// Gives the object up without deleting it.
    T* release() noexcept
    {
        T* object = _object;
        _object = nullptr;
        return object;
    }

protected:
    explicit OwnedPtrBase(T* object) noexcept
        : _object(object)
    {
    }
    ~OwnedPtrBase() { Deleter::destroy(_object); }

    void take(T* object) noexcept
    {
        if (object != _object)
            Deleter::destroy(_object);
        _object = object;
    }

private:
    T* _object;
};

template <class T, class Deleter>
class OwnedPtrRet;

template <class T, class Deleter>
class OwnedPtr : public OwnedPtrBase<T, Deleter>
{
    using Base = OwnedPtrBase<T, Deleter>;

public:
    explicit OwnedPtr(T* object = nullptr) noexcept
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
    OwnedPtr(OwnedPtrRet<T, Deleter>
                 other) noexcept // NOLINT: converting on purpose, a factory's result is stored
        : Base(other.release())
    {
    }

    OwnedPtr& operator=(OwnedPtr& other) noexcept { return takeFrom(other); }
    OwnedPtr& operator=(OwnedPtr&& other) noexcept { return takeFrom(other); }
    OwnedPtr& operator=(OwnedPtrRet<T, Deleter> other) noexcept { return takeFrom(other); }

private:
    OwnedPtr& takeFrom(OwnedPtrBase<T, Deleter>& other) noexcept
    {
        this->take(other.release());
        return *this;
    }
};

/// A factory's result: ownership on its way to the caller.
template <class T, class Deleter>
class OwnedPtrRet : public OwnedPtrBase<T, Deleter>
{
    using Base = OwnedPtrBase<T, Deleter>;

public:
    explicit OwnedPtrRet(T* object = nullptr) noexcept
        : Base(object)
    {
    }
    OwnedPtrRet(OwnedPtr<T, Deleter>&
                    other) noexcept // NOLINT: converting on purpose, `return pointer;` passes it on
        : Base(other.release())
    {
    }
    OwnedPtrRet(OwnedPtr<T, Deleter>&& other) noexcept // NOLINT: as above
        : Base(other.release())
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
    OwnedPtrRet& operator=(const OwnedPtrRet&) = delete;
};

} // namespace Kr

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

template <class T, class Deleter>
class OwnedPtrRet;

template <class T, class Deleter>
class OwnedPtr
{
public:
    explicit OwnedPtr(T* object = nullptr) noexcept
        : _object(object)
    {
    }
    OwnedPtr(OwnedPtr& other) noexcept
        : _object(other.release())
    {
    }
    OwnedPtr(OwnedPtr&& other) noexcept
        : _object(other.release())
    {
    }
    OwnedPtr(OwnedPtrRet<T, Deleter>
                 other) noexcept // NOLINT: converting on purpose, a factory's result is stored
        : _object(other.release())
    {
    }
    ~OwnedPtr() { Deleter::destroy(_object); }

    OwnedPtr& operator=(OwnedPtr& other) noexcept { return take(other.release()); }
    OwnedPtr& operator=(OwnedPtr&& other) noexcept { return take(other.release()); }
    OwnedPtr& operator=(OwnedPtrRet<T, Deleter> other) noexcept { return take(other.release()); }

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

private:
    OwnedPtr& take(T* object) noexcept
    {
        if (object != _object)
            Deleter::destroy(_object);
        _object = object;
        return *this;
    }

    T* _object;
};

/// A factory's result: ownership on its way to the caller.
template <class T, class Deleter>
class OwnedPtrRet
{
public:
    explicit OwnedPtrRet(T* object = nullptr) noexcept
        : _object(object)
    {
    }
    OwnedPtrRet(OwnedPtr<T, Deleter>&
                    other) noexcept // NOLINT: converting on purpose, `return pointer;` passes it on
        : _object(other.release())
    {
    }
    OwnedPtrRet(OwnedPtr<T, Deleter>&& other) noexcept // NOLINT: as above
        : _object(other.release())
    {
    }
    OwnedPtrRet(OwnedPtrRet& other) noexcept
        : _object(other.release())
    {
    }
    OwnedPtrRet(OwnedPtrRet&& other) noexcept
        : _object(other.release())
    {
    }
    ~OwnedPtrRet() { Deleter::destroy(_object); }
    OwnedPtrRet& operator=(const OwnedPtrRet&) = delete;

    bool isNull() const noexcept { return _object == nullptr; }
    T* get() const noexcept { return _object; }
    T& operator*() const noexcept { return *_object; }
    T* operator->() const noexcept { return _object; }
    T& operator[](std::size_t index) const noexcept { return _object[index]; }
    T* release() noexcept
    {
        T* object = _object;
        _object = nullptr;
        return object;
    }

private:
    T* _object;
};

} // namespace Kr

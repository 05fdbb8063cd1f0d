#pragma once

/// @file
/// The root of the library's exceptions.
///
/// Every error that the library raises is an object of a class derived from `ExBase` and from one
/// class of the standard hierarchy, so it can be caught either way:
/// @code
/// try
/// {
///     Kr::raise<Kr::ExInternalError>(KR_HERE, "The scene is empty."); // base/raise.h
/// }
/// catch (const Kr::ExBase& error)
/// {
///     std::cerr << error.getDetailedReason() << '\n'; // type, file, line, reason
/// }
/// @endcode
/// All texts live in fixed arrays inside the object: an exception never allocates once it is built,
/// and a copy copies only the characters in use.
///
/// Pitfalls: `setReason` appends; `getDetailedReason` freezes its text at the first call, and
/// because it caches into the object two threads must not format one exception at the same time.

#include <base/krBaseApi.h>

#include <cstddef>
#include <cstdint>
#include <exception>
#include <stdexcept>

namespace Kr
{

/// The sizes of an exception's texts, their terminators included. Apart from the exported class, so
/// that every program has them for itself.
struct ExTextSizes
{
    static constexpr std::size_t reasonSize = 1024;
    static constexpr std::size_t fileNameSize = 128;
};

class KR_BASE_API ExBase : public ExTextSizes
{
public:
    /// Stores the position of the raise. A null `file` leaves the name empty; a longer name is cut
    /// to its first 127 characters.
    ExBase(const char* file, int line) noexcept;
    ExBase(const ExBase& other) noexcept;
    ExBase& operator=(const ExBase& other) noexcept;

    /// What went wrong; empty until a derived class sets it.
    virtual const char* getReason() const noexcept;

    /// The dynamic type, file and line in brackets, a line feed, then the reason; cut to 1023
    /// characters. Formatted at the first call and kept from then on.
    virtual const char* getDetailedReason() const noexcept;

    virtual ~ExBase() = 0;

    /// A heap copy of the most-derived object. The caller deletes it.
    virtual ExBase* clone() const = 0;

    const char* getFileName() const noexcept { return _fileName; }
    int getLineNo() const noexcept { return _lineNo; }

protected:
    /// Appends to the reason (appends on purpose: derived classes add to their base's text). What
    /// does not fit in 1023 characters is cut; a null text does nothing.
    void setReason(const char* text) noexcept;

private:
    void setFileName(const char* name) noexcept;
    void copyTexts(const ExBase& other) noexcept;

    mutable char _detailedReason[reasonSize];
    char _reason[reasonSize];
    char _fileName[fileNameSize];
    std::int32_t _lineNo;
    // The lengths of the texts, so that a copy need not look for their ends.
    mutable std::uint16_t _detailedLength = 0;
    std::uint16_t _reasonLength = 0;
    std::uint16_t _fileNameLength = 0;
};

/// What every concrete exception adds to its standard base and its family: `what()` gives the
/// reason and `clone()` copies the most-derived object.
/// @tparam Concrete the concrete class, which derives from this one
/// @tparam Standard its class of the standard hierarchy, built with an empty message
/// @tparam Family its family class, derived from `ExBase`
template <class Concrete, class Standard, class Family>
class ExConcrete : public Standard, public Family
{
public:
    const char* what() const noexcept override { return this->getReason(); }
    ExBase* clone() const override { return new Concrete(static_cast<const Concrete&>(*this)); }

protected:
    template <class... Arguments>
    explicit ExConcrete(const Arguments&... arguments)
        : Standard("")
        , Family(arguments...)
    {
    }
};

/// A failed check, or an error that has no class of its own.
class KR_BASE_API ExInternalError : public ExConcrete<ExInternalError, std::runtime_error, ExBase>
{
public:
    /// @param text the reason; null for none
    ExInternalError(const char* file, int line, const char* text);
};

/// Raised in the place of an exception that a function must not throw.
class KR_BASE_API ExBadException : public ExBase, public std::bad_exception
{
public:
    ExBadException(const char* file, int line) noexcept;
    const char* what() const noexcept override { return getReason(); }
    ExBase* clone() const override;
};

} // namespace Kr

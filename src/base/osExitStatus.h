#pragma once

/// @file
/// How a program has ended.
/// @code{.cpp}
/// #include <base/osProcess.h>
///
/// void compress()
/// {
///     const Kr::OsExitStatus status = Kr::OsProcess(Kr::OsCommand("compress")).wait();
///     if (status.isAbnormal())
///         std::cerr << "The compressor has crashed: " << status.getText() << '\n';
///     else if (!status.isSuccess())
///         std::cerr << "The compressor says no: " << status.getCode() << '\n';
/// }
/// @endcode
/// A crash looks alike on every system: where a signal ends programs, it has the code of the
/// exception that ends them elsewhere, as 0xC0000005 for a bad access to memory. A signal that has
/// none is 0xE0510000 and its number.

#include <base/krBaseApi.h>

#include <cstdint>
#include <iosfwd>
#include <string>

namespace Kr
{

class KR_BASE_API OsExitStatus
{
public:
    explicit OsExitStatus(std::uint32_t code) noexcept;

    /// What `main` has returned, or the code of what has ended the program.
    std::uint32_t getCode() const noexcept { return _code; }

    bool isSuccess() const noexcept { return _code == 0; }

    /// Whether something else than the program itself has ended it: a crash, a signal, force.
    bool isAbnormal() const noexcept;

    /// Whether `OsProcess::terminate`, or its like, has ended the program.
    bool isTerminated() const noexcept;

    /// In words: "exit status 3", "bad memory access (0xC0000005)", "signal 15".
    std::string getText() const;

private:
    std::uint32_t _code;
};

inline bool operator==(OsExitStatus lhs, OsExitStatus rhs) noexcept
{
    return lhs.getCode() == rhs.getCode();
}
inline bool operator!=(OsExitStatus lhs, OsExitStatus rhs) noexcept
{
    return lhs.getCode() != rhs.getCode();
}

/// Writes the text.
KR_BASE_API std::ostream& operator<<(std::ostream& stream, OsExitStatus status);

} // namespace Kr

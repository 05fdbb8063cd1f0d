#pragma once

/// @file
/// What goes wrong with programs that are started. Names and arguments in a reason are cut at 256
/// characters; what stands for the system is the system's own text.
/// @code{.cpp}
/// #include <base/osProcess.h>
///
/// void convert(const Kr::OsCommand& converter)
/// {
///     try
///     {
///         Kr::OsProcess(converter).wait();
///     }
///     catch (const Kr::OsProcessEx::ExNotStarted& error) // it has not run at all
///     {
///         std::cerr << error.getReason() << '\n';
///     }
/// }
/// @endcode

#include <base/exBase.h>

#include <cstddef>

namespace Kr
{

class KR_BASE_API OsProcessEx : public ExBase
{
public:
    class ExNotStarted;
    class ExNoStreamFile;
    class ExArgumentsTooLong;
    class ExUnsafeArgument;
    class ExBadText;
    class ExRunning;
    class ExStatusLost;
    class ExNotConnected;
    class ExInputClosed;

protected:
    OsProcessEx(const char* file, int line) noexcept;
};

/// "Cannot start the program '%.*s': " and the system's reason; or, where its folder is to blame,
/// "Cannot start the program '%.*s' in the folder '%.*s': ".
class KR_BASE_API OsProcessEx::ExNotStarted
    : public ExConcrete<OsProcessEx::ExNotStarted, std::runtime_error, OsProcessEx>
{
public:
    /// @param folder null if it is not to blame
    ExNotStarted(const char* file, int line, const char* program, const char* folder,
                 const char* systemReason, unsigned long errorCode);

    /// The system's code, as of `ExSysErrorWindows`.
    unsigned long getErrorCode() const noexcept { return _errorCode; }

private:
    unsigned long _errorCode;
};

/// "Cannot open '%.*s' as the standard %s of the program '%.*s': " and the system's reason, with
/// the stream's name.
class KR_BASE_API OsProcessEx::ExNoStreamFile
    : public ExConcrete<OsProcessEx::ExNoStreamFile, std::runtime_error, OsProcessEx>
{
public:
    ExNoStreamFile(const char* file, int line, const char* path, const char* stream,
                   const char* program, const char* systemReason);
};

/// "The arguments of the program '%.*s' are too long for the system: %zu characters in all, %zu in
/// the longest."
class KR_BASE_API OsProcessEx::ExArgumentsTooLong
    : public ExConcrete<OsProcessEx::ExArgumentsTooLong, std::length_error, OsProcessEx>
{
public:
    ExArgumentsTooLong(const char* file, int line, const char* program, std::size_t size,
                       std::size_t longest);
};

/// "The command interpreter, which runs '%.*s', could misread the argument '%.*s'."
class KR_BASE_API OsProcessEx::ExUnsafeArgument
    : public ExConcrete<OsProcessEx::ExUnsafeArgument, std::invalid_argument, OsProcessEx>
{
public:
    ExUnsafeArgument(const char* file, int line, const char* program, const char* argument);
};

/// "An argument holds a null character behind '%.*s'.", "'%.*s' is no name of a variable." and the
/// like: a text that no program can be given.
class KR_BASE_API OsProcessEx::ExBadText
    : public ExConcrete<OsProcessEx::ExBadText, std::invalid_argument, OsProcessEx>
{
public:
    /// @param format with one "%.256s" for the text
    ExBadText(const char* file, int line, const char* format, const char* text);
};

/// "The process %lu is still running."
class KR_BASE_API OsProcessEx::ExRunning
    : public ExConcrete<OsProcessEx::ExRunning, std::logic_error, OsProcessEx>
{
public:
    ExRunning(const char* file, int line, unsigned long process);
};

/// "The exit status of the process %lu is lost: another part of the program has fetched it." On a
/// POSIX host, where somebody waits for any child or ignores the ends of all.
class KR_BASE_API OsProcessEx::ExStatusLost
    : public ExConcrete<OsProcessEx::ExStatusLost, std::runtime_error, OsProcessEx>
{
public:
    ExStatusLost(const char* file, int line, unsigned long process);
};

/// "The standard output of the process %lu is not connected to a pipe.", with the stream's name.
class KR_BASE_API OsProcessEx::ExNotConnected
    : public ExConcrete<OsProcessEx::ExNotConnected, std::logic_error, OsProcessEx>
{
public:
    ExNotConnected(const char* file, int line, const char* stream, unsigned long process);
};

/// "The process %lu has closed its input after %zu of %zu bytes."
class KR_BASE_API OsProcessEx::ExInputClosed
    : public ExConcrete<OsProcessEx::ExInputClosed, std::runtime_error, OsProcessEx>
{
public:
    ExInputClosed(const char* file, int line, unsigned long process, std::size_t taken,
                  std::size_t size);

    /// How many of the bytes the pipe has taken.
    std::size_t getTaken() const noexcept { return _taken; }

private:
    std::size_t _taken;
};

} // namespace Kr

#include <base/osProcessEx.h>

#include <cstdio>

namespace Kr
{

OsProcessEx::OsProcessEx(const char* file, int line) noexcept
    : ExBase(file, line)
{
}

OsProcessEx::ExNotStarted::ExNotStarted(const char* file, int line, const char* program,
                                        const char* folder, const char* systemReason,
                                        unsigned long errorCode)
    : ExConcrete(file, line)
    , _errorCode(errorCode)
{
    char reason[reasonSize];
    if (folder != nullptr)
        std::snprintf(reason, sizeof reason,
                      "Cannot start the program '%.256s' in the folder '%.256s': %s", program,
                      folder, systemReason);
    else
        std::snprintf(reason, sizeof reason, "Cannot start the program '%.256s': %s", program,
                      systemReason);
    setReason(reason);
}

OsProcessEx::ExNoStreamFile::ExNoStreamFile(const char* file, int line, const char* path,
                                            const char* stream, const char* program,
                                            const char* systemReason)
    : ExConcrete(file, line)
{
    char reason[reasonSize];
    std::snprintf(reason, sizeof reason,
                  "Cannot open '%.256s' as the standard %s of the program '%.256s': %s", path,
                  stream, program, systemReason);
    setReason(reason);
}

OsProcessEx::ExArgumentsTooLong::ExArgumentsTooLong(const char* file, int line, const char* program,
                                                    std::size_t size, std::size_t longest)
    : ExConcrete(file, line)
{
    char reason[reasonSize];
    std::snprintf(reason, sizeof reason,
                  "The arguments of the program '%.256s' are too long for the system: %zu "
                  "characters in all, %zu in the longest.",
                  program, size, longest);
    setReason(reason);
}

OsProcessEx::ExUnsafeArgument::ExUnsafeArgument(const char* file, int line, const char* program,
                                                const char* argument)
    : ExConcrete(file, line)
{
    char reason[reasonSize];
    std::snprintf(reason, sizeof reason,
                  "The command interpreter, which runs '%.256s', could misread the argument "
                  "'%.256s'.",
                  program, argument);
    setReason(reason);
}

OsProcessEx::ExBadText::ExBadText(const char* file, int line, const char* format, const char* text)
    : ExConcrete(file, line)
{
    char reason[reasonSize];
    std::snprintf(reason, sizeof reason, format, text);
    setReason(reason);
}

OsProcessEx::ExRunning::ExRunning(const char* file, int line, unsigned long process)
    : ExConcrete(file, line)
{
    char reason[reasonSize];
    std::snprintf(reason, sizeof reason, "The process %lu is still running.", process);
    setReason(reason);
}

OsProcessEx::ExStatusLost::ExStatusLost(const char* file, int line, unsigned long process)
    : ExConcrete(file, line)
{
    char reason[reasonSize];
    std::snprintf(reason, sizeof reason,
                  "The exit status of the process %lu is lost: another part of the program has "
                  "fetched it.",
                  process);
    setReason(reason);
}

OsProcessEx::ExNotConnected::ExNotConnected(const char* file, int line, const char* stream,
                                            unsigned long process)
    : ExConcrete(file, line)
{
    char reason[reasonSize];
    std::snprintf(reason, sizeof reason,
                  "The standard %s of the process %lu is not connected to a pipe.", stream,
                  process);
    setReason(reason);
}

OsProcessEx::ExInputClosed::ExInputClosed(const char* file, int line, unsigned long process,
                                          std::size_t taken, std::size_t size)
    : ExConcrete(file, line)
    , _taken(taken)
{
    char reason[reasonSize];
    std::snprintf(reason, sizeof reason,
                  "The process %lu has closed its input after %zu of %zu bytes.", process, taken,
                  size);
    setReason(reason);
}

} // namespace Kr

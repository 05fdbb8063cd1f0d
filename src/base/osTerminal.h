#pragma once

/// @file
/// Whether a person reads the standard streams: progress that overwrites itself belongs on a
/// terminal, plain lines into a file or pipe.
/// @code
/// const char* const lineEnd =
///     Kr::OsTerminal::isTerminal(Kr::OsTerminal::StandardOutput) ? "\r" : "\n";
/// @endcode

#include <base/krBaseApi.h>

namespace Kr
{

class KR_BASE_API OsTerminal
{
public:
    enum Stream
    {
        StandardInput = 0,
        StandardOutput = 1,
        StandardError = 2
    };

    static bool isTerminal(Stream stream) noexcept;
};

} // namespace Kr

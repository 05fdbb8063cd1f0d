#pragma once

/// @file
/// The logger's levels.
/// @code
/// std::cout << Kr::LgTypes::getLevelName(Kr::LgTypes::Warning); // Warning
/// const Kr::LgTypes::Level level = Kr::LgTypes::getLevelFromString("Internal Error");
/// @endcode

#include <base/krBaseApi.h>

namespace Kr
{

class KR_BASE_API LgTypes
{
public:
    /// How severe a message is, most severe first. `Profiling` stands beside the others: it is for
    /// measurements, and is switched on and off by itself.
    enum Level : unsigned int
    {
        InternalError, ///< the program broke a promise of its own
        FatalError,    ///< the program cannot go on
        Error,         ///< what was asked for was not done
        Warning,       ///< it was done, but something is amiss
        Informational, ///< what a user of the program may want to know
        Tracing,       ///< what the program's developer may want to know
        Profiling,     ///< measurements

        NUM_LEVELS
    };

    /// The level's name, as the log and the environment variables spell it: "Internal Error",
    /// "Fatal Error", "Error", "Warning", "Informational", "Tracing", "Profiling". Raises
    /// `ExInternalError` for a value that is no level.
    static const char* getLevelName(Level level);

    /// The level of that name, exactly as above: case and blanks matter. Raises
    /// `LgEx::InvalidLevelString` if there is none, `ExInternalError` for a null name.
    static Level getLevelFromString(const char* name);
};

} // namespace Kr

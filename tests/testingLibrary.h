#pragma once

#include "testing_library_export.h"

/// A library with tests of its own.
class TESTING_LIBRARY_EXPORT TestingLibrary
{
public:
    static void load(); ///< keeps the linker from leaving the library out
};

#pragma once

// The viewer: a package with a setting of every kind.

#include "scene.h"

namespace KrInit
{

struct viewer
{
    static constexpr const char* name = "viewer";
    using Dependencies = Kr::InDependencies<base, scene>;
    static void start();
    static void stop();
};

} // namespace KrInit

#pragma once

// What the command line and the environment say, and the program's topic in the log. They are there
// while the package is up.

#include "picture.h"
#include "scene.h"

#include <base/krInitPackages.h>
#include <base/lgGroups.h>
#include <base/rational.h>

namespace KrInit
{

struct render
{
    static constexpr const char* name = "render";
    using Dependencies = Kr::InDependencies<base>;
    static void start();
    static void stop();
};

} // namespace KrInit

class Settings
{
public:
    static int getFrames();
    static Kr::Rational getRate();
    static unsigned int getSamples();
    static int getThreads();  ///< as many as the machine runs at once unless set
    static int getTileSize(); ///< such that a tile's pixels fit the first cache

    static Picture makePicture();
    static Scene makeScene();

    static const Kr::LgMinorGroup& getLog();
};

#include "viewer.h"

#include <base/inContextAlias.h>
#include <base/inInit.imp>
#include <base/inVariable.h>

#include <iostream>

template class Kr::InInit<KrInit::viewer>;

namespace
{

enum class Shading
{
    Flat,
    Smooth,
    Traced
};

Kr::InInit<KrInit::viewer> package;

const Kr::InVariable<std::int32_t> samples(package, "viewer.samples", 4, "Samples per pixel",
                                           {1, 64});
const Kr::InVariable<double> exposure(package, "viewer.exposure", 1., "Exposure, in stops",
                                      {-10., 10.});
const Kr::InVariable<bool> vsync(package, "viewer.vsync", true, "Wait for the display");
const Kr::InVariable<std::string> title(package, "viewer.title", "untitled", "Window title");
const Kr::InVariable<Shading>
    shading(package, "viewer.shading", Shading::Smooth, "Shading",
            {{"flat", Shading::Flat}, {"smooth", Shading::Smooth}, {"traced", Shading::Traced}});

const Kr::InContextAlias samplesAlias("viewer.samples", "--samples", "STARTUP_SAMPLES");
const Kr::InContextAlias vsyncAlias("viewer.vsync", "--vsync", "STARTUP_VSYNC");
const Kr::InContextAlias titleAlias("viewer.title", "--title");
const Kr::InContextAlias shadingAlias("viewer.shading", "--shading", "STARTUP_SHADING");

} // namespace

void KrInit::viewer::start()
{
    std::cout << "viewer: started, '" << title.getValue() << "' shows "
              << Scene::getInstance().size() << " objects with " << samples.getValue()
              << " samples per pixel\n";
}

void KrInit::viewer::stop()
{
    // The scene is still there: it stops after everything that needs it.
    std::cout << "viewer: stopped, it showed " << Scene::getInstance().size() << " objects"
              << std::endl;
}

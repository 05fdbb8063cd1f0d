#include "settings.h"

#include <base/inContextAlias.h>
#include <base/inInit.imp>
#include <base/inVariable.h>
#include <base/log.h>
#include <base/osProcessor.h>
#include <base/pow2.h>

#include <algorithm>
#include <memory>

template class Kr::InInit<KrInit::render>;

namespace
{

Kr::InInit<KrInit::render> package;

const Kr::InVariable<int> frames(package, "render.frames", 1, "Frames to render", {0, 9999});
const Kr::InVariable<int> rate(package, "render.rate", 24, "Frames a second", {1, 1000});
const Kr::InVariable<int> width(package, "render.width", 320, "Pixels in a row", {1, 16384});
const Kr::InVariable<int> height(package, "render.height", 180, "Rows", {1, 16384});
const Kr::InVariable<unsigned int> samples(package, "render.samples", 16,
                                           "Samples a pixel, made a power of two", {1, 65536});
const Kr::InVariable<int> threads(package, "render.threads", 0,
                                  "Threads; 0: as many as the machine runs at once", {0, 1024});
const Kr::InVariable<std::string> scene(package, "render.scene", "",
                                        "A file of spheres, 'x y z radius red green blue' a line");

const Kr::InContextAlias framesAlias("render.frames", "--frames", "RENDER_FRAMES");
const Kr::InContextAlias samplesAlias("render.samples", "--samples", "RENDER_SAMPLES");
const Kr::InContextAlias sceneAlias("render.scene", "--scene", "RENDER_SCENE");

std::unique_ptr<Kr::LgMinorGroup> group;

} // namespace

void KrInit::render::start()
{
    group = std::make_unique<Kr::LgMinorGroup>(Kr::LgMajorGroup::getInstanceForName("Render"),
                                               "Frames");
}

void KrInit::render::stop()
{
    group.reset();
}

int Settings::getFrames()
{
    return frames.getValue();
}

Kr::Rational Settings::getRate()
{
    return {rate.getValue(), 1};
}

unsigned int Settings::getSamples()
{
    const unsigned int power = Kr::Pow2::ceil(samples.getValue());
    if (power != samples.getValue())
        KR_LOG(*group, Warning) << power << " samples a pixel instead of " << samples.getValue();
    return power;
}

int Settings::getThreads()
{
    const int given = threads.getValue();
    return given != 0 ? given : std::max(1, Kr::OsProcessor::getInstance().getThreadCount());
}

int Settings::getTileSize()
{
    constexpr std::int64_t pixelSize = 16;
    const Kr::OsProcessor::Cache* const cache = Kr::OsProcessor::getInstance().findCache(1);
    int size = 8;
    while (cache != nullptr && 4 * size * size * pixelSize <= cache->size)
        size *= 2;
    return size;
}

Picture Settings::makePicture()
{
    return {width.getValue(), height.getValue()};
}

Scene Settings::makeScene()
{
    return scene.getValue().empty() ? Scene() : Scene(Kr::OsFilePath(scene.getValue()));
}

const Kr::LgMinorGroup& Settings::getLog()
{
    return *group;
}

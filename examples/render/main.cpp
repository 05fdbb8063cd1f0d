// Renders an animation: spheres under a sky, as BMP files, with all threads of the machine.
//
//   render FOLDER --frames=24 --samples=64
//   KR_LOG_DIR=logs KR_LOG_TIMELINE=timeline.json RENDER_SCENE=scene.txt render FOLDER
//   render --help

#include "settings.h"
#include "workers.h"

#include <base/dbgBuildInfo.h>
#include <base/dtRefTime.h>
#include <base/dtTimeCode.h>
#include <base/dtTimeUtil.h>
#include <base/inContextAliasMgrBase.h>
#include <base/inInitGuard.h>
#include <base/inSettings.h>
#include <base/inVariableEx.h>
#include <base/lgListener.h>
#include <base/log.h>
#include <base/osDir.h>
#include <base/profCounters.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <string>

KR_BUILD_INFO("Render", "1.0.0");

namespace
{

Kr::OsFilePath getFramePath(const Kr::OsFilePath& folder, const Kr::DtTime& time)
{
    std::string number = std::to_string(static_cast<long long>(time.getCount()));
    number.insert(0, 4 - std::min<std::size_t>(4, number.size()), '0');
    return folder + Kr::OsFilePath("frame" + number + ".bmp");
}

/// How long it has been, in seconds.
double getSecondsSince(const Kr::DtRefTime& start)
{
    const Kr::DtRefTime now = Kr::DtRefTimeFactory::getInstance().create();
    return Kr::DtTimeUtil::getSecondsDouble(
        Kr::DtTime(now.getCount() - start.getCount(), now.getRate()));
}

void renderFrames(const Scene& scene, const Kr::OsFilePath& folder)
{
    const Kr::LgMinorGroup& log = Settings::getLog();
    const Kr::DtTimeCode code(Settings::getRate());
    const unsigned int samples = Settings::getSamples();
    Workers workers(Settings::getThreads(), Settings::getTileSize());
    Kr::DtTime time(Kr::DtTimeIndex(0), Settings::getRate());
    const Kr::DtRefTime start = Kr::DtRefTimeFactory::getInstance().create();
    Kr::ProfCounters machine;
    machine.add("\\Processor(_Total)\\% Processor Time");
    machine.sample();
    for (; time.getCount() < Settings::getFrames(); ++time)
    {
        const Kr::DtRefTime frameStart = Kr::DtRefTimeFactory::getInstance().create();
        Picture picture = Settings::makePicture();
        workers.render(Tracer(scene, time, samples), picture);
        machine.sample();
        picture.write(getFramePath(folder, time));
        KR_LOG(log, Profiling) << "frame " << time << " took " << getSecondsSince(frameStart)
                               << " s";
        std::cout << code.getText(time.getCount()) << "  " << getFramePath(folder, time) << '\n';
    }
    KR_LOG(log, Informational) << "rendered until " << time << " in " << getSecondsSince(start)
                               << " s";
    Kr::ProfConsolidator profile = workers.getProfile();
    profile.setCounters(&machine);
    std::cout << "\nTiles, all threads. " << profile;
}

int run()
{
    const auto words = Kr::InContextAliasMgrBase::getRemainingWords(); // the program first
    if (words.size() != 2)
    {
        std::cerr << "usage: render FOLDER [options], see --help\n";
        return 2;
    }
    const Kr::LgListener warnings(
        [](const Kr::LgMessage& message)
        {
            if (message.level <= Kr::LgTypes::Warning)
                std::cerr << message.group << ": " << message.text << '\n';
        });

    const Kr::OsFilePath folder(words.back());
    Kr::OsDir(folder).createAll();
    const Scene scene = Settings::makeScene();
    const Kr::Interval<float> heights = scene.getHeights();
    KR_LOG(Settings::getLog(), Informational)
        << static_cast<unsigned int>(scene.size()) << " spheres from " << heights.getLower()
        << " to " << heights.getUpper();
    renderFrames(scene, folder);
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char** argv)
{
    try
    {
        if (Kr::InSettings::answerHelp(argc, argv, std::cout))
            return EXIT_SUCCESS;
        Kr::InSettings::refuseUnknownOptions(argc, argv);
        const Kr::InInitGuard guard(argc, argv);
        return run();
    }
    catch (const std::exception& error)
    {
        std::cerr << "render: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}

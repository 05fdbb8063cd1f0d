#pragma once

// What the examples take for granted: they are parts of a viewer.

#include <base/dtRefTime.h>
#include <base/dtTimeCode.h>
#include <base/exSysError.h>
#include <base/inInitGuard.h>
#include <base/inOptionParser.h>
#include <base/lgTypes.h>
#include <base/log.h>
#include <base/osDateUtil.h>
#include <base/osDir.h>
#include <base/osDirWalker.h>
#include <base/osFile.h>
#include <base/osFileEx.h>
#include <base/osFileReader.h>
#include <base/osFileWriter.h>
#include <base/osMemoryArch.h>
#include <base/profiler.h>
#include <base/rational.h>
#include <base/rnAsymmetricalSeparableBiRng.h>
#include <base/rnDirectionMultiRng.h>
#include <base/rnEx.h>
#include <base/rnGaussianRng.h>
#include <base/rnHaltonBiRng.h>
#include <base/rnHistogramRng.h>
#include <base/rnLecuyerUniformRng.h>
#include <base/rnMexicanHatRng.h>
#include <base/rnNiederreiterMultiRng.h>
#include <base/timer.h>
#include <base/trace.h>

#include <cassert>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

extern int argc;
extern const char* const* argv;

bool nextFrame();
void load();
void render();
template <class Thing>
void draw(const Thing& thing);

struct Shape
{
    virtual ~Shape() = default;
};
struct Circle : Shape
{
};

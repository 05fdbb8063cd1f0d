#pragma once

// Spheres under a sky. A scene is a text: a line for each sphere, "x y z radius red green blue".

#include "vector3.h"

#include <base/exBase.h>
#include <base/interval.h>
#include <base/osFilePath.h>

#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

struct Sphere
{
    Vector3 centre;
    float radius = 0;
    Vector3 colour;
};

struct Ray
{
    Vector3 origin;
    Vector3 direction; ///< of length 1
};

struct Hit
{
    const Sphere* sphere = nullptr; ///< null: the sky
    float distance = std::numeric_limits<float>::max();
};

class SceneEx : public Kr::ExBase
{
public:
    class ExBadLine;

protected:
    using ExBase::ExBase;
};

class SceneEx::ExBadLine : public Kr::ExConcrete<SceneEx::ExBadLine, std::runtime_error, SceneEx>
{
public:
    ExBadLine(const char* file, int line, const std::string& text);
};

class Scene
{
public:
    Scene(); ///< a few spheres on a large one
    /// Raises `SceneEx::ExBadLine`, or what the file raises.
    explicit Scene(const Kr::OsFilePath& path);

    Hit findHit(const Ray& ray) const;
    static Vector3 getSky(const Vector3& direction);

    std::size_t size() const { return _spheres.size(); }
    Kr::Interval<float> getHeights() const; ///< what the spheres take up of the vertical

private:
    void read(const std::string& text);

    std::vector<Sphere> _spheres;
};

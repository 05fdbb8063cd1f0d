#pragma once

#include "picture.h"
#include "scene.h"

#include <base/dtTime.h>

struct Tile
{
    int left;
    int top;
    int right; ///< behind the last column
    int bottom;
};

/// Light that reaches a camera which passes by the scene, from the sun and, over one bounce, from
/// the sky.
class Tracer
{
public:
    /// @param samples for each pixel; powers of two give the most even ones
    Tracer(const Scene& scene, const Kr::DtTime& time, unsigned int samples);

    /// Threads may render different tiles of a picture at once.
    void render(const Tile& tile, Picture& picture) const;

private:
    class Sampler;

    Vector3 getPixel(int x, int y, const Picture& picture) const;
    Ray getRay(float u, float v) const;
    Vector3 getLight(const Ray& ray, Sampler& sampler) const;
    Vector3 getSunlight(const Vector3& point, const Vector3& normal) const;

    const Scene& _scene;
    Vector3 _eye;
    unsigned int _samples;
};

#include "tracer.h"

#include <base/dtTimeUtil.h>
#include <base/rnDirectionMultiRng.h>
#include <base/rnLecuyerUniformRng.h>
#include <base/rnScrambledRng.h>
#include <base/rnSeparableBiRng.h>

/// The random numbers of a pixel, of its own wherever and whenever it is rendered: even ones for
/// places in the pixel, independent ones for directions.
class Tracer::Sampler
{
public:
    explicit Sampler(unsigned int pixel)
        : _places(pixel)
        , _numbers(pixel + 1)
        , _square(&_numbers)
        , _sphere(&_square)
    {
    }

    void getPlace(float (&place)[4]) { _places.getSample(place); }

    /// A direction around a normal, by its cosine: a point of the sphere that touches the plane.
    Vector3 getBounce(const Vector3& normal)
    {
        float direction[3];
        _sphere.getSample(direction);
        const Vector3 sum = normal + Vector3{direction[0], direction[1], direction[2]};
        return dot(sum, sum) < 1e-6F ? normal : normalize(sum);
    }

private:
    Kr::RnScrambledNiederreiterMultiRng<float> _places;
    Kr::RnLecuyerUniformRng<float> _numbers;
    Kr::RnSeparableBiRng<float> _square;
    Kr::RnSphereMultiRng<float> _sphere;
};

namespace
{

const Vector3 towardsSun = normalize({-0.6F, 0.9F, 0.7F});
const Vector3 sunColour{1.6F, 1.5F, 1.3F};

} // namespace

Tracer::Tracer(const Scene& scene, const Kr::DtTime& time, unsigned int samples)
    : _scene(scene)
    , _eye{-1 + 0.5F * Kr::DtTimeUtil::getSecondsFloat(time), 1.1F, 4}
    , _samples(samples)
{
}

void Tracer::render(const Tile& tile, Picture& picture) const
{
    for (int y = tile.top; y < tile.bottom; ++y)
        for (int x = tile.left; x < tile.right; ++x)
            picture.setPixel(x, y, getPixel(x, y, picture));
}

Vector3 Tracer::getPixel(int x, int y, const Picture& picture) const
{
    const float scale = 1 / static_cast<float>(picture.getHeight());
    Sampler sampler(static_cast<unsigned int>(y * picture.getWidth() + x));
    Vector3 sum;
    for (unsigned int i = 0; i < _samples; ++i)
    {
        float place[4];
        sampler.getPlace(place);
        const float u = (static_cast<float>(x) + place[0]) * scale -
                        0.5F * static_cast<float>(picture.getWidth()) * scale;
        const float v = 0.5F - (static_cast<float>(y) + place[1]) * scale;
        sum = sum + getLight(getRay(u, v), sampler);
    }
    return sum * (1 / static_cast<float>(_samples));
}

Ray Tracer::getRay(float u, float v) const
{
    const Vector3 target{0, 0.5F, 0};
    const Vector3 forward = normalize(target - _eye);
    const Vector3 right = normalize({-forward.z, 0, forward.x});
    const Vector3 up{right.y * forward.z - right.z * forward.y,
                     right.z * forward.x - right.x * forward.z,
                     right.x * forward.y - right.y * forward.x};
    return {_eye, normalize(forward * 1.6F + right * u + up * v)};
}

Vector3 Tracer::getLight(const Ray& ray, Sampler& sampler) const
{
    const Hit hit = _scene.findHit(ray);
    if (hit.sphere == nullptr)
        return Scene::getSky(ray.direction);
    const Vector3 point = ray.origin + ray.direction * hit.distance;
    const Vector3 normal = (point - hit.sphere->centre) * (1 / hit.sphere->radius);
    Vector3 light = getSunlight(point, normal);

    const Ray bounced{point, sampler.getBounce(normal)};
    const Hit next = _scene.findHit(bounced);
    if (next.sphere == nullptr)
        light = light + Scene::getSky(bounced.direction);
    else
        light = light + next.sphere->colour * 0.25F;
    return light * hit.sphere->colour * 0.6F;
}

Vector3 Tracer::getSunlight(const Vector3& point, const Vector3& normal) const
{
    const float cosine = dot(normal, towardsSun);
    if (cosine <= 0 || _scene.findHit({point, towardsSun}).sphere != nullptr)
        return {};
    return sunColour * cosine;
}

#include "scene.h"

#include <base/osFile.h>
#include <base/osFileReader.h>
#include <base/raise.h>

#include <algorithm>
#include <sstream>

namespace
{

const char* const builtIn = "0 -1000 0   1000   0.55 0.55 0.5\n" // the ground
                            "-1.1 0.5 0.2  0.5  0.9 0.25 0.2\n"
                            "0 0.7 0       0.7  0.95 0.8 0.3\n"
                            "1.2 0.45 0.1  0.45 0.2 0.45 0.85\n"
                            "0.5 0.2 1     0.2  0.3 0.75 0.4\n"
                            "-0.5 0.15 1.1 0.15 0.85 0.85 0.9\n";

std::string readFile(const Kr::OsFilePath& path)
{
    std::string text(Kr::OsFile(path).getSize(), '\0');
    Kr::OsFileReader reader(path);
    std::size_t size = 0;
    while (size < text.size())
    {
        const unsigned long count =
            reader.read(&text[size], static_cast<unsigned long>(text.size() - size));
        if (count == 0)
            break; // it has shrunk meanwhile
        size += count;
    }
    text.resize(size);
    return text;
}

} // namespace

SceneEx::ExBadLine::ExBadLine(const char* file, int line, const std::string& text)
    : ExConcrete(file, line)
{
    setReason("A sphere is 'x y z radius red green blue', not '");
    setReason(text.c_str());
    setReason("'.");
}

Scene::Scene()
{
    read(builtIn);
}

Scene::Scene(const Kr::OsFilePath& path)
{
    read(readFile(path));
}

void Scene::read(const std::string& text)
{
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);)
    {
        if (line.find_first_not_of(" \t\r") == std::string::npos)
            continue;
        std::istringstream words(line);
        Sphere sphere;
        words >> sphere.centre.x >> sphere.centre.y >> sphere.centre.z >> sphere.radius >>
            sphere.colour.x >> sphere.colour.y >> sphere.colour.z;
        if (words.fail() || !(words >> std::ws).eof() || sphere.radius <= 0)
            Kr::raise<SceneEx::ExBadLine>(KR_HERE, line);
        _spheres.push_back(sphere);
    }
}

Hit Scene::findHit(const Ray& ray) const
{
    constexpr float nearest = 1e-3F; // a ray does not hit where it starts
    Hit hit;
    for (const Sphere& sphere : _spheres)
    {
        const Vector3 toCentre = sphere.centre - ray.origin;
        const float along = dot(toCentre, ray.direction);
        const Vector3 across = toCentre - ray.direction * along;
        const float inside = sphere.radius * sphere.radius - dot(across, across);
        if (inside < 0)
            continue;
        const float half = Kr::FloatUtil::sqrt(inside);
        const float distance = along - half > nearest ? along - half : along + half;
        if (distance > nearest && distance < hit.distance)
            hit = {&sphere, distance};
    }
    return hit;
}

Vector3 Scene::getSky(const Vector3& direction)
{
    const Vector3 horizon{0.95F, 0.97F, 1.0F};
    const Vector3 zenith{0.35F, 0.55F, 0.95F};
    const float height = std::clamp(0.5F * (direction.y + 1), 0.0F, 1.0F);
    return horizon * (1 - height) + zenith * height;
}

Kr::Interval<float> Scene::getHeights() const
{
    auto heights = Kr::Interval<float>::getEmpty();
    for (const Sphere& sphere : _spheres)
    {
        heights.extend(sphere.centre.y - sphere.radius);
        heights.extend(sphere.centre.y + sphere.radius);
    }
    return heights;
}

#pragma once

#include <base/floatUtil.h>

struct Vector3
{
    float x = 0;
    float y = 0;
    float z = 0;
};

inline Vector3 operator+(const Vector3& a, const Vector3& b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

inline Vector3 operator-(const Vector3& a, const Vector3& b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

inline Vector3 operator*(const Vector3& a, float factor)
{
    return {a.x * factor, a.y * factor, a.z * factor};
}

inline Vector3 operator*(const Vector3& a, const Vector3& b)
{
    return {a.x * b.x, a.y * b.y, a.z * b.z};
}

inline float dot(const Vector3& a, const Vector3& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

inline Vector3 normalize(const Vector3& a)
{
    return a * (1.0F / Kr::FloatUtil::sqrt(dot(a, a)));
}

#pragma once

/// @file
/// Two coordinates of a generator of vectors as the pair of another.

#include <base/rnMultiRng.h>

namespace Kr
{

template <class T>
void getPair(RnMultiRng<T, 2>& rng, T& x, T& y)
{
    T sample[2];
    rng.getSample(sample);
    x = sample[0];
    y = sample[1];
}

template <class T>
void getPairs(RnMultiRng<T, 2>& rng, unsigned int n, T* array0, T* array1)
{
    T* array[] = {array0, array1};
    rng.getSequence(n, array);
}

template <class T>
T getPairPdf(const RnMultiRng<T, 2>& rng, T x, T y)
{
    T sample[] = {x, y};
    return rng.getPdf(sample);
}

} // namespace Kr

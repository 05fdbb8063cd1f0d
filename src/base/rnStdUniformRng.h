#pragma once

/// @file
/// The language runtime's own `rand`, behind the interface of the other generators.
/// @code
/// Kr::RnStdUniformRng<float> fromRuntime(1);
/// const float x = fromRuntime(); // as std::rand gives it after std::srand(1)
/// @endcode
/// Pitfalls: all instances, and everybody who calls `std::rand`, draw from one generator, so
/// seeding or drawing anywhere changes what comes next here. Its values differ between runtimes. A
/// sample can be exactly 1, although the stated density and bounds are those of [0, 1).

#include <base/rnUnitRng.h>

namespace Kr
{

template <class T>
class RnStdUniformRng : public RnUnitRng<T>
{
public:
    /// Seeds the runtime's generator.
    explicit RnStdUniformRng(unsigned int seed);
    /// Leaves the runtime's generator as it is. `restart()` seeds it with 1, which is what it
    /// starts with.
    RnStdUniformRng();

    using RnUnitRng<T>::operator();
    /// `rand()` divided by the largest value that it can have.
    T operator()() override;
    void getSequence(unsigned int n, T* array) override;
    /// Seeds the runtime's generator again.
    void restart() override;
    char const* getName() const override;

private:
    T eval();

    unsigned int _seed;
};

extern template class KR_BASE_API RnStdUniformRng<float>;
extern template class KR_BASE_API RnStdUniformRng<double>;

} // namespace Kr

#pragma once

/// @file
/// The elementary functions that samples are made with, in nothing but additions, multiplications,
/// divisions and square roots: the runtime libraries' own differ in their last bits from one system
/// to the next. Within 0.54 units in the last place (`exp`: 0.9).

namespace Kr::Elementary
{

/// The natural logarithm; -infinity at 0, NaN below and for NaN.
double log(double x);
/// e to the x.
double exp(double x);
/// x * x * x, rounded once.
double cube(double x);

/// sqrt(-2 log(x) / x), rounded to T at each step.
template <class T>
T polarFactor(T x);
/// The same of an even number of values, each a T, in little more than half the time.
template <class T>
void polarFactors(const double* x, unsigned int count, double* factors);

struct SinCos
{
    double sin;
    double cos;
};
/// Sine and cosine of `turns` times a full circle; `turns` is from 0 to 1.
SinCos sinCosOfTurns(double turns);

} // namespace Kr::Elementary

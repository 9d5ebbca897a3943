// Sine, cosine and arc sine that give the same double on both builds: the
// double functions of the 32-bit and the 64-bit C libraries differ in the
// last bit for some arguments, the extended ones do not, so the extended
// function is applied to the double and its result rounded to double.
#pragma once

#include <cmath>

namespace krl {

constexpr double kPi = 3.141592653589793;

inline double Sin(double v) { return static_cast<double>(sinl(static_cast<long double>(v))); }
inline double Cos(double v) { return static_cast<double>(cosl(static_cast<long double>(v))); }
inline double Asin(double v) { return static_cast<double>(asinl(static_cast<long double>(v))); }

}  // namespace krl

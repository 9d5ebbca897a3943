// Conversions whose rounding is part of the visible result, written out so a
// reader can check each against the description of the transition using it.
#pragma once

#include <cstdint>

namespace krl {

// Truncation toward zero to a signed 32-bit integer, as the x86 conversion
// instruction does it: a NaN or a value outside the int32 range gives
// INT32_MIN (the processor's "integer indefinite") instead of undefined
// behaviour, so out-of-range inputs render the same on every build.
inline int32_t TruncToInt32(double x) {
  if (x > -2147483649.0 && x < 2147483648.0) return static_cast<int32_t>(x);
  return INT32_MIN;
}

inline int32_t TruncToInt32(long double x) {
  if (x > -2147483649.0L && x < 2147483648.0L) return static_cast<int32_t>(x);
  return INT32_MIN;
}

// floor(x) as a signed 32-bit integer, held to the int32 range; a NaN gives
// 0. The compare-and-step form avoids a library call per pixel.
inline int32_t FloorToInt32(double x) {
  if (!(x > -2147483648.0)) return x != x ? 0 : INT32_MIN;
  if (!(x < 2147483647.0)) return INT32_MAX;
  const int32_t t = static_cast<int32_t>(x);
  return static_cast<double>(t) > x ? t - 1 : t;
}

// Truncation toward zero held to lo..hi, a NaN giving lo: for an edge or a
// length computed from Progress, which may lie anywhere, huge or NaN.
template <typename Int>
Int TruncToRange(long double x, Int lo, Int hi) {
  if (!(x > static_cast<long double>(lo))) return lo;
  if (x >= static_cast<long double>(hi)) return hi;
  return static_cast<Int>(x);
}

// a - b in 32 bits, wrapping as the machine does instead of overflowing:
// only the "indefinite" INT32_MIN of an out-of-range conversion gets there.
inline int32_t WrappingSubtract(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}

// a * b and a + b in 32 bits, wrapping as the machine does.
inline int32_t WrappingMultiply(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b));
}
inline int32_t WrappingAdd(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

// a / b and a % b truncating toward zero, for any divisor: a zero divisor
// gives 0 (a flat result instead of a fault) and INT32_MIN / -1 wraps.
inline int32_t TruncatingQuotient(int32_t a, int32_t b) {
  if (b == 0) return 0;
  return b == -1 ? WrappingSubtract(0, a) : a / b;
}
inline int32_t TruncatingRemainder(int32_t a, int32_t b) { return b == 0 || b == -1 ? 0 : a % b; }

// A value rounded to single precision (round to nearest), as a store to a
// 32-bit float does; used where a product is rounded to single before it is
// truncated.
inline float RoundToSingle(double x) { return static_cast<float>(x); }

// The same from an extended value, rounded once (never through double).
inline float RoundToSingle(long double x) { return static_cast<float>(x); }
inline float RoundToSingle(int32_t x) { return static_cast<float>(x); }

}  // namespace krl

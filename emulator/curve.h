// The host's curves: the points given, joined by straight lines, constant
// beyond the first and the last point.
#pragma once

#include <vector>

namespace krl::emu {

struct CurvePoint {
  double position;
  double value;
};

// No point gives 0. A NaN position gives NaN: a host fed garbage passes it on.
inline double EvaluateCurve(const std::vector<CurvePoint>& points, double position) {
  if (points.empty()) return 0.0;
  if (position != position) return position;
  if (position <= points.front().position) return points.front().value;
  for (size_t i = 1; i < points.size(); ++i) {
    const CurvePoint& p0 = points[i - 1];
    const CurvePoint& p1 = points[i];
    if (position < p1.position) {
      const double span = p1.position - p0.position;
      if (!(span > 0.0)) return p1.value;
      return p0.value + (p1.value - p0.value) * ((position - p0.position) / span);
    }
  }
  return points.back().value;
}

// Inserts a point keeping the positions in order; a later point at an equal
// position goes after the earlier one.
inline void InsertCurvePoint(std::vector<CurvePoint>& points, CurvePoint point) {
  auto it = points.begin();
  while (it != points.end() && !(point.position < it->position)) ++it;
  points.insert(it, point);
}

}  // namespace krl::emu

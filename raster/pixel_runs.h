// Pixel runs: the geometric transitions decide what a pixel shows once per
// run of pixels that show the same, not once per pixel.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>

namespace krl {

// Splits [begin, end) at the cut columns and hands each longest run of one
// class (a Source, or any value the caller tells pixels apart by) to
// paint(class, runBegin, runEnd). The class must not change between cuts;
// classify(x) is asked once at begin and at every cut inside.
template <typename Classify, typename Paint>
void ForEachRun(int32_t begin, int32_t end, std::span<int32_t> cuts, Classify classify, Paint paint) {
  using Class = decltype(classify(begin));
  if (begin >= end) return;
  // A handful of cuts: insertion sort.
  for (size_t i = 1; i < cuts.size(); ++i) {
    for (size_t j = i; j > 0 && cuts[j] < cuts[j - 1]; --j) std::swap(cuts[j], cuts[j - 1]);
  }
  int32_t runBegin = begin;
  Class runSource = classify(begin);
  for (const int32_t cut : cuts) {
    if (cut <= begin) continue;
    if (cut >= end) break;
    const Class source = classify(cut);
    if (source != runSource) {
      paint(runSource, runBegin, cut);
      runBegin = cut;
      runSource = source;
    }
  }
  paint(runSource, runBegin, end);
}

// The coordinate `distance` pixels on from `from` (upwards when `forward`,
// downwards otherwise), but not past `limit`: where a band of that depth ends
// inside a cell. Formed in 64 bits, so any depth is safe.
inline int32_t StepTowardLimit(int32_t from, int32_t distance, int32_t limit, bool forward) {
  return static_cast<int32_t>(forward ? std::min<int64_t>(int64_t{from} + distance, limit)
                                      : std::max<int64_t>(int64_t{from} - distance, limit));
}

}  // namespace krl

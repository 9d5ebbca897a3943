// Two doors of A parting over B, the shape Sliding Doors and Cross Split
// share along a line of a cell (its columns, or its rows): the near door,
// read `shift` pixels further on so that its content moves towards the
// line's start; a pen; the opening, where B shows in place; a pen; the far
// door, read `shift` pixels back so that it moves towards the line's end.
#pragma once

#include <algorithm>
#include <cstdint>

#include "raster/pixel_rows.h"
#include "raster/pixel_runs.h"
#include "transitions/pengrid/pen_grid.h"

namespace krl {

// begin <= nearEnd <= openBegin <= openEnd <= farBegin <= end.
struct DoorSpans {
  int32_t begin, nearEnd, openBegin, openEnd, farBegin, end;
  int32_t shift;

  // Pens of thickness `pen` (at least 0) outside the opening, clipped to
  // [begin, end). The opening lies inside the line.
  static DoorSpans PenOutside(int32_t begin, int32_t end, Interval opening, int32_t pen, int32_t shift) {
    return {begin,       StepTowardLimit(opening.begin, pen, begin, false),
            opening.begin, opening.end,
            StepTowardLimit(opening.end, pen, end, true), end,
            shift};
  }

  // Pens of thickness `pen` (at least 0) inside the bar, which lies inside
  // the line; a bar no thicker than two pens is pen all over.
  static DoorSpans PenInside(int32_t begin, int32_t end, Interval bar, int32_t pen, int32_t shift) {
    const int32_t openBegin = StepTowardLimit(bar.begin, pen, bar.end, true);
    const int32_t openEnd = std::max(StepTowardLimit(bar.end, pen, bar.begin, false), openBegin);
    return {begin, bar.begin, openBegin, openEnd, bar.end, end, shift};
  }
};

// One output row across the column spans: the doors from A's row aRow
// (shifted along it), the opening from B's row bRow at the same columns.
inline void PaintDoorRow(PixelWord* out, const PixelWord* aRow, const PixelWord* bRow, const DoorSpans& c,
                         uint32_t pen) {
  CopyRun(out + c.begin, aRow + c.begin + c.shift, c.nearEnd - c.begin);
  FillRun(out + c.nearEnd, pen, c.openBegin - c.nearEnd);
  CopyRun(out + c.openBegin, bRow + c.openBegin, c.openEnd - c.openBegin);
  FillRun(out + c.openEnd, pen, c.farBegin - c.openEnd);
  CopyRun(out + c.farBegin, aRow + c.farBegin - c.shift, c.end - c.farBegin);
}

// The same row where the doors are pen too: only the opening shows B.
inline void PaintPenRow(PixelWord* out, const PixelWord* bRow, const DoorSpans& c, uint32_t pen) {
  FillRun(out + c.begin, pen, c.openBegin - c.begin);
  CopyRun(out + c.openBegin, bRow + c.openBegin, c.openEnd - c.openBegin);
  FillRun(out + c.openEnd, pen, c.end - c.openEnd);
}

enum class DoorPart : uint8_t { Door, Pen, Opening };

// The rows of row spans in order, each with what it shows and, for a door,
// the row of A it reads.
template <typename PaintRow>
void ForEachDoorRow(const DoorSpans& r, PaintRow paint) {
  for (int32_t y = r.begin; y < r.nearEnd; ++y) paint(DoorPart::Door, y, y + r.shift);
  for (int32_t y = r.nearEnd; y < r.openBegin; ++y) paint(DoorPart::Pen, y, y);
  for (int32_t y = r.openBegin; y < r.openEnd; ++y) paint(DoorPart::Opening, y, y);
  for (int32_t y = r.openEnd; y < r.farBegin; ++y) paint(DoorPart::Pen, y, y);
  for (int32_t y = r.farBegin; y < r.end; ++y) paint(DoorPart::Door, y, y - r.shift);
}

}  // namespace krl

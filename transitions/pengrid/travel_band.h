// The frame Wipe, Slide and Push share: B advances into every cell of the
// pen grid from one side, a pen band of BorderWidth pixels runs ahead of it
// on A's side, and A fills the rest. The three differ only in where they
// read B and A, which a ShiftRule tells.
#pragma once

#include "host/declare.h"
#include "raster/travel.h"
#include "transitions/pengrid/pen_fields.h"
#include "transitions/pengrid/pen_grid.h"

namespace krl {

// One cell as the band crosses it.
struct BandCell {
  Cell cell;
  Travel travel;
  int32_t size;     // the cell's extent along the travel
  int32_t advance;  // B's advance: pixels along the travel, 0..size
  int32_t penEnd;   // the far end of the pen band (a column or a row, clipped to the cell)
};

// Where the B range and the A range read their source: the output column (or
// row) plus the shift.
struct ReadShifts {
  int32_t bShift = 0;
  int32_t aShift = 0;
};

using ShiftRule = ReadShifts (*)(const BandCell&);

// B moved in by its advance instead of uncovered in place (Slide and Push).
inline int32_t MovedInShift(const BandCell& band) {
  return EntersAtLowEnd(band.travel) ? band.size - band.advance : band.advance - band.size;
}

// The whole render of a travelling-band transition; returns the render result.
int32_t RenderTravelBand(t_KrRenderInfo* ri, const PenGridFields& fields, ShiftRule shifts);

}  // namespace krl

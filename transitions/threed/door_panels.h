// The Doors family: A, cut into cells, swings away on hinges like doors and
// uncovers B. Each door is a panel turned away from the viewer: its free
// edge moves toward the hinge, and its edges across the door slant toward
// the free edge by a quarter of the depth it has moved. Doors and Vertical
// Doors hang two doors in every cell, one on each hinge edge; Swinging Door
// and Vertical Swinging Door one door across the whole cell. The vertical
// members are the others with rows and columns exchanged.
//
// Words used below: "along" is the axis from a hinge to the free edge (the
// columns of Doors), "across" the other one (its rows); c is a place's
// distance from its hinge, r its distance from the nearer cell edge across.
#pragma once

#include <array>
#include <cstdint>

#include "host/declare.h"
#include "host/host_interface.h"
#include "raster/numeric.h"
#include "transitions/pengrid/pen_fields.h"

namespace krl {

// The host's indices of the fields of a member.
struct DoorPanelFields {
  ClipFields clip;
  FieldIndex divideX, divideY, color, borderWidth, closing, hinge, antiAlias;
};

constexpr FieldSpec DoorClosingField(FieldIndex* index) {
  return Bool(index, "IsDoorClosing", "Closing Door").Help("Specifies whether the doors will close or open.").Default(0);
}

// Doors and Vertical Doors.
constexpr auto DoorsFieldTable(DoorPanelFields& f) {
  return FieldTable(f.clip, DivideXField(&f.divideX), DivideYField(&f.divideY), PenColorField(&f.color),
                    PenThicknessField(&f.borderWidth), DoorClosingField(&f.closing), AntiAliasingField(&f.antiAlias, "IsAntiAlias"));
}

// The swinging doors: their hinge field between the closing and the anti-aliasing.
constexpr auto SwingingDoorFieldTable(DoorPanelFields& f, const FieldSpec& hinge) {
  return FieldTable(f.clip, DivideXField(&f.divideX), DivideYField(&f.divideY), PenColorField(&f.color),
                    PenThicknessField(&f.borderWidth), DoorClosingField(&f.closing), hinge,
                    AntiAliasingField(&f.antiAlias, "IsAntiAlias"));
}

// Where the hinges are: on the cells' left and right edges (their first
// and last columns), or on their first and last rows.
enum class DoorAxis : uint8_t { Columns, Rows };

// Two doors per cell, one on each hinge edge, or one door across the cell
// whose hinge edge the field `hinge` chooses (on: the first column or row).
enum class DoorCount : uint8_t { Two, One };

int32_t RenderDoorPanels(t_KrRenderInfo* ri, const DoorPanelFields& fields, DoorAxis axis, DoorCount count);

// The integer square root the doors find their depth with: a first guess
// from the bit length of n, then at most ten Newton steps, each rounding its
// half-step toward minus infinity before dividing. In 32-bit arithmetic that
// wraps, as the machine's does; 0 for n <= 0.
inline int32_t DoorSquareRoot(int32_t n) {
  if (n <= 0) return 0;
  int32_t g = n >> 2;
  if (g != 0) {
    int32_t k = 0;
    for (int32_t v = g; v != 0; v >>= 2) ++k;
    g = n >> k;
    if (g == 0) g = 1;
  } else {
    g = 1;
  }
  for (int i = 0; i < 10; ++i) {
    const int32_t e = WrappingSubtract(n, WrappingMultiply(g, g));
    const int32_t u = (e < 0 ? WrappingSubtract(e, g) : WrappingAdd(e, g)) >> 1;
    const int32_t delta = TruncatingQuotient(u, g);  // g of 0 (only after wrapping) ends the steps
    g = WrappingAdd(g, delta);
    if (delta == 0) break;
  }
  return g;
}

}  // namespace krl

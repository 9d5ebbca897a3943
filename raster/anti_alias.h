// The edge blenders: after a transition has painted a shape, each smooths one
// straight edge of it. A blender walks the edge from (x0, y0) toward
// (x1, y1) with an integer line walk and, at every step, re-writes the pixel
// on the edge and one neighbour as a mix of two sources weighted by the
// pixel's distance from the ideal line. The four differ in the direction of
// the walk (columns and rows growing or shrinking), which is fixed by the
// routine, not by the end points:
//
//   AntiAlias1  columns +1, rows +1      AntiAlias3  columns -1, rows +1
//   AntiAlias2  columns +1, rows -1      AntiAlias4  columns -1, rows -1
//
// The walk runs while the column has not reached x1 (it is controlled by the
// column alone): x0 = x1 draws nothing. Rows that would leave the frame are
// held at its last row (rows +1) or at row 0 (rows -1). The neighbour is
// written only inside the limits minCol, maxRow, maxCol, minRow as each
// routine states them (raster/anti_alias.cpp). Modes: 0 mixes src1 and src2,
// 1 the colour and src2, 2 src1 and the colour; any other mode writes nothing.
// All four bytes of a pixel are blended, alpha included.
//
// What a caller must guarantee:
// - dst, src1 and src2 each hold `stride` x `height` pixels of 4 bytes, row
//   r starting at byte 4 x r x stride (src1 or src2 may be null where the
//   mode does not read it);
// - the columns of both end points lie in 0 .. stride - 1: the main pixel's
//   column is not checked against the frame's width, so an edge that leaves
//   it wraps into the neighbouring row, as the pixel address says;
// - `color` points to 4 readable bytes when the mode is 1 or 2.
// Beyond that the blenders keep to the frame by themselves: a pixel whose
// address would lie outside the stride x height pixels is neither read nor
// written. A walk takes about max(|x1 - x0|, |y1 - y0|) steps.
#pragma once

#include <cstdint>

#include "host/export.h"

// A colour as the blenders take it: 4 bytes in the order of a pixel.
struct _color_t {
  uint8_t Blue;
  uint8_t Green;
  uint8_t Red;
  uint8_t Alpha;
};
static_assert(sizeof(_color_t) == 4, "_color_t is one pixel");

#define KR_ANTI_ALIAS_PARAMETERS                                                                            \
  uint8_t *dst, uint8_t *src1, uint8_t *src2, int32_t stride, int32_t height, int32_t x0, int32_t y0,       \
      int32_t x1, int32_t y1, int32_t minCol, int32_t maxRow, int32_t maxCol, int32_t minRow, int32_t mode, \
      _color_t *color

KR_EXPORT void AntiAlias1(KR_ANTI_ALIAS_PARAMETERS);
KR_EXPORT void AntiAlias2(KR_ANTI_ALIAS_PARAMETERS);
KR_EXPORT void AntiAlias3(KR_ANTI_ALIAS_PARAMETERS);
KR_EXPORT void AntiAlias4(KR_ANTI_ALIAS_PARAMETERS);

#undef KR_ANTI_ALIAS_PARAMETERS

namespace krl {

// Which of the four blenders, named by the direction of its walk in the
// library's bottom-up frames (rows +1 is up): AntiAlias1 .. AntiAlias4.
enum class EdgeWalk : uint8_t { RightUp = 1, RightDown = 2, LeftUp = 3, LeftDown = 4 };

// The frames and limits every blend of one shape shares.
struct EdgeFrame {
  uint8_t* dst;
  const uint8_t* src1;
  const uint8_t* src2;
  int32_t stride;
  int32_t height;
  int32_t minCol, maxRow, maxCol, minRow;
  int32_t mode;
  const _color_t* color;
};

struct EdgePoint {
  int32_t x, y;
};

// What AntiAlias1 .. AntiAlias4 do, for the library's own callers.
void BlendEdge(EdgeWalk walk, const EdgeFrame& frame, EdgePoint from, EdgePoint to);

}  // namespace krl

// Cross Stretch: in every cell of the pen grid B enters from one side as a
// thin strip holding its whole cell squeezed and stretches across the cell,
// while A, also whole, is squeezed toward the other side until it vanishes.
// A pen stands at the seam. Pictures are scaled along the travel only.
#include "host/transition.h"
#include "raster/pixel_rows.h"
#include "raster/scratch.h"
#include "transitions/pengrid/stretch_strips.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Stretch/Cross Stretch",
                             .signature = "Cross Stretch (ZE plug-in SDK effect)",
                             .displayName = "Cross Stretch", .description = "Va is squeezed by stretching Vb."};

PenGridFields fields;

constexpr auto kFields = StretchFieldTable(fields);

// A strip shows its clip's whole cell: index i reads the along-index
// floor(((i - s + 0.5) x L) / j) of the cell, for a strip of length j from s.
// The quotient lies in 0..L - 0.5, so the conversion truncates as floor does.
void SqueezeInto(const Strip& s, int32_t length, int32_t* from) {
  const int32_t j = s.Length();
  for (int32_t i = s.begin; i < s.end; ++i) from[i] = static_cast<int32_t>(((i - s.begin + 0.5) * length) / j);
}

// One row of a strip across columns; `clip` and `out` start at the cell.
void Gather(PixelWord* out, const PixelWord* clip, const int32_t* from, const Strip& s) {
  for (int32_t i = s.begin; i < s.end; ++i) out[i] = clip[from[i]];
}

void PaintAcrossColumns(const FrameRows& rows, const Cell& c, const StretchStrips& s, const int32_t* from,
                        uint32_t pen) {
  for (int32_t y = c.y0; y < c.y1; ++y) {
    PixelWord* out = rows.Out(y) + c.x0;
    Gather(out, rows.B(y) + c.x0, from, s.b);
    FillRun(out + s.pen.begin, pen, s.pen.Length());
    Gather(out, rows.A(y) + c.x0, from, s.a);
  }
}

// Travelling along rows every output row is one source row of the cell.
void PaintAcrossRows(const FrameRows& rows, const Cell& c, const StretchStrips& s, const int32_t* from, uint32_t pen) {
  const int32_t w = c.Width();
  for (int32_t i = s.b.begin; i < s.b.end; ++i) CopyRun(rows.Out(c.y0 + i) + c.x0, rows.B(c.y0 + from[i]) + c.x0, w);
  for (int32_t i = s.pen.begin; i < s.pen.end; ++i) FillRun(rows.Out(c.y0 + i) + c.x0, pen, w);
  for (int32_t i = s.a.begin; i < s.a.end; ++i) CopyRun(rows.Out(c.y0 + i) + c.x0, rows.A(c.y0 + from[i]) + c.x0, w);
}

int32_t CrossStretchRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, fields.transType)) return 0;
  const StretchReads reads = ReadStretch(HostCalls(ri), fields);
  if (!DrawsBetweenEnds(ri)) return 1;

  const FrameRows rows = FrameRows::Of(ri);
  const bool acrossColumns = AcrossColumns(reads.travel);
  const Scratch<int32_t> from = AllocateScratch<int32_t>(static_cast<size_t>(acrossColumns ? rows.width : rows.height));
  if (!from) return 1;  // no memory for the table: the output stays as it was
  // Cells of the same length have the same strips and the same table.
  int32_t tableLength = -1;
  ForEachStretchCell(ri, reads, [&](const Cell& cell, const StretchStrips& s) {
    if (s.length != tableLength) {
      SqueezeInto(s.b, s.length, from.get());
      SqueezeInto(s.a, s.length, from.get());
      tableLength = s.length;
    }
    if (acrossColumns) {
      PaintAcrossColumns(rows, cell, s, from.get(), reads.pen.pen);
    } else {
      PaintAcrossRows(rows, cell, s, from.get(), reads.pen.pen);
    }
  });
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(CrossStretch, kTexts, kFields)
KR_TEST_PROFILE("Cross Stretch", .heavier = {"Divide_X=4", "BorderWidth=6", "Color=#FF2000", "Direction=1"}, .drawsNothingWith = {{"Divide_X=0"}})

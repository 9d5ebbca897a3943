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
void Gather(PixelWord* out, const PixelWord* clip, const int32_t* from, Strip s) {
  for (int32_t i = s.begin; i < s.end; ++i) out[i] = clip[from[i]];
}

// Travelling along columns the frames are walked row by row, through every
// cell of the row.
void PaintAcrossColumns(const FrameRows& rows, const StretchCells& cells, const int32_t* from, uint32_t pen) {
  for (int32_t y = 0; y < rows.height; ++y) {
    PixelWord* out = rows.Out(y);
    for (int32_t i = cells.First(); i < cells.count; ++i) {
      const int32_t x0 = cells.Origin(i);
      const StretchStrips& s = cells.Strips(i);
      const int32_t* table = from + cells.TableStart(i);
      Gather(out + x0, rows.B(y) + x0, table, s.b);
      FillRun(out + x0 + s.pen.begin, pen, s.pen.Length());
      Gather(out + x0, rows.A(y) + x0, table, s.a);
    }
  }
}

// Travelling along rows every output row is one whole source row of its cell.
void PaintAcrossRows(const FrameRows& rows, const StretchCells& cells, const int32_t* from, uint32_t pen) {
  const int32_t w = rows.width;
  for (int32_t i = cells.First(); i < cells.count; ++i) {
    const int32_t y0 = cells.Origin(i);
    const StretchStrips& s = cells.Strips(i);
    const int32_t* table = from + cells.TableStart(i);
    for (int32_t k = s.b.begin; k < s.b.end; ++k) CopyRun(rows.Out(y0 + k), rows.B(y0 + table[k]), w);
    for (int32_t k = s.pen.begin; k < s.pen.end; ++k) FillRun(rows.Out(y0 + k), pen, w);
    for (int32_t k = s.a.begin; k < s.a.end; ++k) CopyRun(rows.Out(y0 + k), rows.A(y0 + table[k]), w);
  }
}

// The table of the cells of one length.
void SqueezeInto(const StretchStrips& s, int32_t* from) {
  SqueezeInto(s.b, s.length, from);
  SqueezeInto(s.a, s.length, from);
}

int32_t CrossStretchRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, fields.transType)) return 0;
  const StretchReads reads = ReadStretch(HostCalls(ri), fields);
  if (FrameDoneAtTheEnds(ri) || !DrawableFrame(ri)) return 1;

  const StretchCells cells = CellsAlong(ri, reads);
  if (cells.count == 0) return 1;
  const Scratch<int32_t> from = AllocateScratch<int32_t>(static_cast<size_t>(cells.TableLength()));
  if (!from) return 1;  // no memory for the tables: the output stays as it was
  if (cells.count > 1) SqueezeInto(cells.regular, from.get());
  SqueezeInto(cells.last, from.get() + cells.LastTableStart());
  const FrameRows rows = FrameRows::Of(ri);
  if (AcrossColumns(reads.travel)) {
    PaintAcrossColumns(rows, cells, from.get(), reads.pen.pen);
  } else {
    PaintAcrossRows(rows, cells, from.get(), reads.pen.pen);
  }
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(CrossStretch, kTexts, kFields)
KR_TEST_PROFILE("Cross Stretch", .heavier = {"Divide_X=4", "BorderWidth=6", "Color=#FF2000", "Direction=1"})

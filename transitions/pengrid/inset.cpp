// Inset: in every cell B slides in diagonally from one corner over a still
// A, an L-shaped pen along B's two inner edges.
#include "host/transition.h"
#include "host/render_prologue.h"
#include "raster/pixel_rows.h"
#include "transitions/pengrid/pen_grid.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Slide/Inset", .signature = "Inset (ZE plug-in SDK effect)",
                             .displayName = "Inset", .description = "Vb slides over Va from one corner."};

PenGridFields fields;

constexpr auto kFields = PenGridFieldTable(fields, "Specifies the starting point for the transition.", kCornerItems);

// B's extent along one side of the cell: Top Left rounds to nearest, the
// other corners truncate, each from the extended product rounded to single.
// Held to the cell, which single rounding could pass only in frames wider
// than 2^23 pixels.
int32_t Extent(int32_t size, double p, bool rounded) {
  const long double product = static_cast<long double>(size) * p;
  const int32_t extent = TruncToInt32(RoundToSingle(rounded ? product + 0.5 : product));
  return std::clamp(extent, 0, size);
}

// One cell row: B (from its shifted column) or pen over B's width, pen up to
// ex, A beyond; mirrored for right corners.
struct ColumnPlan {
  int32_t x0, x1, a, ex;
  bool left;
  int32_t bShift;  // B column minus output column

  // bRow is null in the rows of pen only.
  void Row(const FrameRows& rows, int32_t y, const PixelWord* bRow, uint32_t pen) const {
    PixelWord* out = rows.Out(y);
    const PixelWord* aRow = rows.A(y);
    if (left) {
      int32_t penBegin = x0;
      if (bRow != nullptr) {
        CopyRun(out + x0, bRow + x0 + bShift, a);
        penBegin = x0 + a;
      }
      FillRun(out + penBegin, pen, ex - penBegin);
      CopyRun(out + ex, aRow + ex, x1 - ex);
    } else {
      const int32_t penEnd = bRow != nullptr ? x1 - a : x1;
      CopyRun(out + x0, aRow + x0, ex - x0);
      FillRun(out + ex, pen, penEnd - ex);
      if (bRow != nullptr) CopyRun(out + penEnd, bRow + penEnd + bShift, a);
    }
  }
};

void PaintCell(const FrameRows& rows, const Cell& c, Corner corner, double p, int32_t t, uint32_t pen) {
  const bool rounded = corner.left && corner.top;
  const int32_t w = c.Width(), h = c.Height();
  const int32_t a = Extent(w, p, rounded), b = Extent(h, p, rounded);
  const ColumnPlan columns{c.x0, c.x1, a,
                           corner.left ? StepTowardLimit(c.x0 + a, t, c.x1, true) : StepTowardLimit(c.x1 - a, t, c.x0, false),
                           corner.left, corner.left ? w - a : a - w};
  // Rows of B (read from the opposite end of B's cell), of pen and of A only.
  const int32_t bRows0 = corner.top ? c.y1 - b : c.y0, bRows1 = corner.top ? c.y1 : c.y0 + b;
  const int32_t bRowShift = corner.top ? b - h : h - b;
  const int32_t ey = corner.top ? StepTowardLimit(c.y1 - b, t, c.y0, false) : StepTowardLimit(c.y0 + b, t, c.y1, true);
  const int32_t penRows0 = corner.top ? ey : bRows1, penRows1 = corner.top ? bRows0 : ey;
  const int32_t aRows0 = corner.top ? c.y0 : ey, aRows1 = corner.top ? ey : c.y1;

  for (int32_t y = aRows0; y < aRows1; ++y) CopyRun(rows.Out(y) + c.x0, rows.A(y) + c.x0, w);
  for (int32_t y = penRows0; y < penRows1; ++y) columns.Row(rows, y, nullptr, pen);
  for (int32_t y = bRows0; y < bRows1; ++y) columns.Row(rows, y, rows.B(y + bRowShift), pen);
}

int32_t InsetRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, fields.transType)) return 0;
  const HostCalls host(ri);
  const PenReads reads = ReadPen(host, fields);
  const Corner corner = DecodeCorner(host.Field(fields.direction));
  if (!DrawableFrame(ri)) return 1;

  const FrameRows rows = FrameRows::Of(ri);
  const double p = ShapeProgress(ri->Progress);
  const int32_t t = PenThickness(reads.thickness);
  ForEachWholeCell(rows.width, rows.height, reads.divideX, reads.divideY,
                   [&](const Cell& cell) { PaintCell(rows, cell, corner, p, t, reads.pen); }, CellOrder::AlongRows);
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(Inset, kTexts, kFields)
KR_TEST_PROFILE("Inset", .heavier = {"Divide_X=3", "Divide_Y=2", "BorderWidth=5", "Color=#FF2000", "Direction=3"})

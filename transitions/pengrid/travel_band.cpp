#include "transitions/pengrid/travel_band.h"

#include "host/render_prologue.h"
#include "raster/pixel_rows.h"

namespace krl {
namespace {

struct Range {
  int32_t begin, end;  // half-open; empty when end <= begin
};

// The B, pen and A ranges of a cell (columns or rows), in the order they lie
// along the travel; they never overlap and stay inside the cell.
struct BandRanges {
  Range b, pen, a;
};

BandRanges RangesOf(const BandCell& band) {
  const Cell& c = band.cell;
  const int32_t n = band.advance, e = band.penEnd;
  switch (band.travel) {
    case Travel::LeftToRight: return {{c.x0, c.x0 + n}, {c.x0 + n, e}, {e, c.x1}};
    case Travel::RightToLeft: return {{c.x1 - n, c.x1}, {e, c.x1 - n}, {c.x0, e}};
    case Travel::TopToBottom: return {{c.y1 - n, c.y1}, {e, c.y1 - n}, {c.y0, e}};
    case Travel::BottomToTop: break;
  }
  return {{c.y0, c.y0 + n}, {c.y0 + n, e}, {e, c.y1}};
}

BandCell BandOf(const Cell& cell, Travel travel, double p, int32_t t) {
  BandCell band{cell, travel, AcrossColumns(travel) ? cell.Width() : cell.Height(), 0, 0};
  // B's advance: the product of the integer size and Progress in extended precision, truncated.
  band.advance = TruncToInt32(static_cast<long double>(band.size) * p);
  switch (travel) {
    case Travel::LeftToRight: band.penEnd = StepTowardLimit(cell.x0 + band.advance, t, cell.x1, true); break;
    case Travel::RightToLeft: band.penEnd = StepTowardLimit(cell.x1 - band.advance, t, cell.x0, false); break;
    case Travel::TopToBottom: band.penEnd = StepTowardLimit(cell.y1 - band.advance, t, cell.y0, false); break;
    case Travel::BottomToTop: band.penEnd = StepTowardLimit(cell.y0 + band.advance, t, cell.y1, true); break;
  }
  return band;
}

// Row y of a cell travelled along its columns.
void PaintRow(const FrameRows& rows, int32_t y, const BandRanges& r, ReadShifts s, uint32_t pen) {
  PixelWord* out = rows.Out(y);
  CopyRun(out + r.b.begin, rows.B(y) + r.b.begin + s.bShift, r.b.end - r.b.begin);
  FillRun(out + r.pen.begin, pen, r.pen.end - r.pen.begin);
  CopyRun(out + r.a.begin, rows.A(y) + r.a.begin + s.aShift, r.a.end - r.a.begin);
}

void PaintAcrossColumns(const FrameRows& rows, const BandCell& band, const BandRanges& r, ReadShifts s, uint32_t pen) {
  for (int32_t y = band.cell.y0; y < band.cell.y1; ++y) PaintRow(rows, y, r, s, pen);
}

// Travelling along columns every cell spans the frame's height. Up to
// kRowCells cells the frame is walked row by row through all of them, so
// that every row is read and written from end to end; more cells are
// painted one after the other. Cells never overlap: the order does not show.
constexpr int32_t kRowCells = 8;

struct RowCell {
  BandRanges ranges;
  ReadShifts shifts;
};

void PaintAcrossRows(const FrameRows& rows, const BandCell& band, const BandRanges& r, ReadShifts s, uint32_t pen) {
  const int32_t x0 = band.cell.x0, w = band.cell.Width();
  for (int32_t y = r.b.begin; y < r.b.end; ++y) CopyRun(rows.Out(y) + x0, rows.B(y + s.bShift) + x0, w);
  for (int32_t y = r.pen.begin; y < r.pen.end; ++y) FillRun(rows.Out(y) + x0, pen, w);
  for (int32_t y = r.a.begin; y < r.a.end; ++y) CopyRun(rows.Out(y) + x0, rows.A(y + s.aShift) + x0, w);
}

}  // namespace

int32_t RenderTravelBand(t_KrRenderInfo* ri, const PenGridFields& fields, ShiftRule shifts) {
  if (!BeginRender(ri, fields.transType)) return 0;
  const HostCalls host(ri);
  PenReads reads = ReadPen(host, fields);
  const Travel travel = DecodeTravel(host.Field(fields.direction));
  // Only the division across the travel counts.
  (AcrossColumns(travel) ? reads.divideY : reads.divideX) = 1;
  if (!DrawableFrame(ri)) return 1;

  const FrameRows rows = FrameRows::Of(ri);
  const double p = ShapeProgress(ri->Progress);
  const int32_t t = PenThickness(reads.thickness);
  if (AcrossColumns(travel)) {
    RowCell cells[kRowCells];
    int32_t count = 0;
    ForEachGridCell(rows.width, rows.height, reads.divideX, reads.divideY, [&](const Cell& cell) {
      const BandCell band = BandOf(cell, travel, p, t);
      if (count < kRowCells) cells[count] = {RangesOf(band), shifts(band)};
      ++count;
    });
    if (count <= kRowCells) {
      for (int32_t y = 0; y < rows.height; ++y) {
        for (int32_t i = 0; i < count; ++i) PaintRow(rows, y, cells[i].ranges, cells[i].shifts, reads.pen);
      }
      return 1;
    }
  }
  ForEachGridCell(rows.width, rows.height, reads.divideX, reads.divideY, [&](const Cell& cell) {
    const BandCell band = BandOf(cell, travel, p, t);
    const BandRanges ranges = RangesOf(band);
    if (AcrossColumns(travel)) {
      PaintAcrossColumns(rows, band, ranges, shifts(band), reads.pen);
    } else {
      PaintAcrossRows(rows, band, ranges, shifts(band), reads.pen);
    }
  });
  return 1;
}

}  // namespace krl

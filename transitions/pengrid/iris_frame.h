// The frame the Iris family shares: inside every whole cell a shape centred
// in the cell opens on B (or closes on A), outlined by a pen. A member brings
// its Shape, built once per frame and painting one cell at a time.
#pragma once

#include <algorithm>
#include <span>

#include "host/render_prologue.h"
#include "raster/pixel_rows.h"
#include "raster/pixel_runs.h"
#include "raster/polygon.h"
#include "transitions/pengrid/pen_grid.h"

namespace krl {

inline constexpr const char* kIrisDirectionHelp = "Specifies whether the iris is opened or closed.";

// What a pixel of a cell shows.
enum class Source : uint8_t { Inside, Outside, Pen, Blend };

struct IrisFrame {
  FrameRows rows;
  const PixelWord* inside;         // B when opening, A when closing
  const PixelWord* outside;        // the other clip
  uint32_t pen;
  int32_t penThickness;
  bool close;
  double progress;                 // held to 0..1
  int32_t cellWidth, cellHeight;   // the nominal cell size
  int32_t centreX, centreY;        // the cell centre's offsets from the cell's corner
  int32_t option;                  // the member's own ninth field, 0 when it has none

  const PixelWord* InsideRow(int32_t y) const { return inside + rows.RowStart(y); }
  const PixelWord* OutsideRow(int32_t y) const { return outside + rows.RowStart(y); }

  // Copies or fills columns [begin, end) of row y (Blend is the member's own).
  void PaintRun(Source source, int32_t y, int32_t begin, int32_t end) const {
    PixelWord* out = rows.Out(y) + begin;
    switch (source) {
      case Source::Inside: CopyRun(out, InsideRow(y) + begin, end - begin); break;
      case Source::Outside: CopyRun(out, OutsideRow(y) + begin, end - begin); break;
      case Source::Pen: FillRun(out, pen, end - begin); break;
      case Source::Blend: break;
    }
  }
};

// The pixel rule of the polygon members: inside both polygons the inside
// source, inside the outer one only the pen, elsewhere the outside source.
inline Source PolygonPairSource(const RowCrossings& inner, const RowCrossings& outer, int32_t x) {
  if (!outer.Inside(x)) return Source::Outside;
  return inner.Inside(x) ? Source::Inside : Source::Pen;
}

// The columns of one row where either polygon's answer may change.
class PairCuts {
 public:
  PairCuts(const RowCrossings& first, const RowCrossings& second) {
    for (const int32_t x : first.Columns()) columns_[count_++] = x;
    for (const int32_t x : second.Columns()) columns_[count_++] = x;
  }
  std::span<int32_t> Columns() { return {columns_.data(), count_}; }

 private:
  std::array<int32_t, 2 * RowCrossings::kMaxVertices> columns_{};
  size_t count_ = 0;
};

// One row of a cell under the pixel rule of the polygon members.
template <typename Paint>
void ForEachPolygonPairRun(const Cell& c, int32_t y, std::span<const Vertex> inner, std::span<const Vertex> outer,
                           Paint paint) {
  const RowCrossings in(inner, y), out(outer, y);
  PairCuts cuts(in, out);
  ForEachRun(c.x0, c.x1, cuts.Columns(), [&](int32_t x) { return PolygonPairSource(in, out, x); }, paint);
}

inline void PaintPolygonPair(const IrisFrame& f, const Cell& c, std::span<const Vertex> inner,
                             std::span<const Vertex> outer) {
  for (int32_t y = c.y0; y < c.y1; ++y) {
    ForEachPolygonPairRun(c, y, inner, outer,
                          [&](Source s, int32_t begin, int32_t end) { f.PaintRun(s, y, begin, end); });
  }
}

// Cross, Diamond and Squared draw a visible pen at least 3 pixels deep.
enum class PenWidening : uint8_t { None, ByTwo };

// The whole render of an iris member: the prologue, the reads (the member's
// own field, when it has one, before Direction), then Shape(frame) painting
// every whole cell, columns outer, rows inner.
template <typename Shape>
int32_t RenderIris(t_KrRenderInfo* ri, const PenGridFields& fields, PenWidening widening,
                   const FieldIndex* option = nullptr) {
  if (!BeginRender(ri, fields.transType)) return 0;
  const HostCalls host(ri);
  const PenReads reads = ReadPen(host, fields);
  const int32_t optionValue = option != nullptr ? host.Field(*option) : 0;
  const bool close = host.Field(fields.direction) == 1;  // any other value opens
  if (!DrawableFrame(ri) || reads.divideX < 1 || reads.divideY < 1) return 1;

  IrisFrame f{};
  f.rows = FrameRows::Of(ri);
  f.inside = close ? f.rows.inputA : f.rows.inputB;
  f.outside = close ? f.rows.inputB : f.rows.inputA;
  f.pen = reads.pen;
  f.penThickness = PenThickness(reads.thickness);
  if (widening == PenWidening::ByTwo && f.penThickness != 0) f.penThickness += 2;
  f.close = close;
  f.progress = ShapeProgress(ri->Progress);
  f.cellWidth = NominalCellSize(f.rows.width, reads.divideX);
  f.cellHeight = NominalCellSize(f.rows.height, reads.divideY);
  f.centreX = f.cellWidth >> 1;
  f.centreY = f.cellHeight >> 1;
  f.option = optionValue;
  const Shape shape(f);
  ForEachWholeCell(f.rows.width, f.rows.height, reads.divideX, reads.divideY,
                   [&](const Cell& cell) { shape.Paint(cell); });
  return 1;
}

}  // namespace krl

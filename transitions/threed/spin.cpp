// Spin Away: A, cut into a grid of cards, turns about the middle axis of each
// card; at half time the cards stand edge-on and only the background shows,
// then they turn on and show B on their back. Each card narrows by the cosine
// of its angle; its receding (far) half shrinks toward the axis line while
// its approaching (near) half grows, both by the sine.
#include <algorithm>
#include <cstring>

#include "host/render_prologue.h"
#include "host/transition.h"
#include "raster/anti_alias.h"
#include "raster/cell_grid.h"
#include "raster/degree_tables.h"
#include "raster/frame.h"
#include "raster/numeric.h"
#include "raster/pixel_rows.h"
#include "raster/scratch.h"
#include "transitions/pengrid/pen_fields.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/3D/Spin Away", .signature = "Spin Away (ZE plug-in SDK effect)",
                             .displayName = "Spin Away", .description = "Va spins around and turns to Vb."};

FieldIndex inputA, inputB, transType, direction, divideX, divideY, color, antiAlias, sharpTines;

constexpr FieldSpec kFields[] = {
    InputAField(&inputA),
    InputBField(&inputB),
    // Its clip items alone are written without blanks around the digits.
    Selector(&transType, "TransType", "Transition", {{"Image1 > Image2", 0}, {"Image2 > Image1", 1}})
        .Help("Specifies the order the clips will change.")
        .Default(0),
    Selector(&direction, "Direction", "Spin Direction",
             {{"Left > Right", 0}, {"Right > Left", 1}, {"Top > Bottom", 2}, {"Bottom > Top", 3}})
        .Help("Specifies the direction of the spinning process.")
        .Default(0),
    DivideXField(&divideX),
    DivideYField(&divideY),
    Color(&color, "Color", "Background Color").Help("Defines the background color.").DefaultColor(0, 0, 0),
    AntiAliasingField(&antiAlias, "IsAntiAlias"),
    Bool(&sharpTines, "SharpTines", "Sharp Tines (on subdivision)")
        .Help("Specifies whether the tines are sharp or rather smooth.")
        .Default(0),
};

enum Direction : int32_t { kLeftToRight = 0, kRightToLeft = 1, kTopToBottom = 2, kBottomToTop = 3 };

// What every card of a frame shares.
struct Spin {
  FrameRows rows;
  const PixelWord* shown;  // A in the first half, B in the second
  const uint8_t* shownBytes;
  uint32_t background;
  bool verticalAxis;
  bool farLow;  // the far half lies at the lower columns (left) or rows (bottom)
  double c;
  long double inv;  // 1 / c
  long double k;    // the vertical factor K
  bool antiAlias;
};

// Per-frame room for the card tables, each as long as the longer frame side.
struct CardTables {
  Scratch<int32_t> sourceLine;              // per column: where it reads (the column, or the row map's column)
  Scratch<int32_t> kOfLine, runEnd;          // per column of a vertical card: its k, the end of its run
  Scratch<long double> nearScale, farScale;  // per k: y1 / (y1 + 2k), y1 / (y1 - 2k)
  size_t size = 0;

  bool Allocate(size_t n) {
    size = n;
    sourceLine = AllocateScratch<int32_t>(n);
    kOfLine = AllocateScratch<int32_t>(n);
    runEnd = AllocateScratch<int32_t>(n);
    nearScale = AllocateScratch<long double>(n);
    farScale = AllocateScratch<long double>(n);
    return sourceLine && kOfLine && runEnd && nearScale && farScale;
  }
};

// The scales about line `end` (y1 or x1, absolute) for every k up to kMax.
void PrepareScales(CardTables& t, int32_t end, int32_t kMax) {
  for (int32_t k = 0; k <= kMax; ++k) {
    t.nearScale[k] = static_cast<long double>(end) / (int64_t{end} + 2 * int64_t{k});
    // Unused where end <= 2k: the far half then has no line left.
    t.farScale[k] = int64_t{end} > 2 * int64_t{k} ? static_cast<long double>(end) / (int64_t{end} - 2 * int64_t{k}) : 0.0L;
  }
}

// trunc(scale x v) held to 0 .. limit - 1: the formulas stay there for
// every card, the clamp keeps any rounding from reading off the frame.
int32_t ScaledLine(long double scale, int64_t v, int32_t limit) {
  return TruncToRange<int32_t>(scale * v, 0, limit - 1);
}

// The card of one cell and its far half's two slanted edges.
class Card {
 public:
  Card(const Spin& s, CardTables& t, const Cell& cell) : s_(s), t_(t), cell_(cell) {}

  // A card turning about the vertical line xa: columns beyond pw = trunc(c x hw)
  // of it are background; a column at distance d reads the source column
  // xa -+ u, u = trunc(d / c), and its rows scaled by k = trunc(u x K) about
  // row y1 / 2 of the frame: grown on the near half, shrunk on the far half,
  // whose rows outside y0 + k .. y1 - k - 1 are background.
  void PaintVerticalAxis() const {
    const Cell& c = cell_;
    const int32_t hw = c.Width() >> 1, pw = TruncToInt32(s_.c * hw), xa = c.x0 + hw;
    const int32_t first = xa - pw, last = xa + pw;  // the card's columns
    int32_t kMax = 0;
    for (int32_t x = first; x < last; ++x) {
      const int32_t d = x < xa ? xa - x : x - xa;
      const int32_t u = TruncToInt32(d * s_.inv);
      // The source column stays in the cell (u <= hw); held to the frame all the same.
      t_.sourceLine[x - c.x0] = std::clamp(x < xa ? xa - u : xa + u, 0, s_.rows.width - 1);
      kMax = std::max(kMax, t_.kOfLine[x - c.x0] = KOf(u));
    }
    PrepareScales(t_, c.y1, kMax);
    const bool leftFar = s_.farLow;
    // Columns of one half with the same k read the same row: runs, each
    // marked at its first column with the column after its last (positions
    // counted from x0).
    const int32_t begin = first - c.x0, end = last - c.x0, axis = hw;
    int32_t* runEnd = t_.runEnd.get();
    const int32_t* kOf = t_.kOfLine.get();
    const int32_t* column = t_.sourceLine.get();
    for (int32_t i = end - 1; i >= begin; --i) {
      runEnd[i] = i + 1 < end && i + 1 != axis && kOf[i + 1] == kOf[i] ? runEnd[i + 1] : i + 1;
    }
    for (int32_t y = c.y0; y < c.y1; ++y) {
      PixelWord* out = s_.rows.Out(y) + c.x0;
      FillRun(out, s_.background, begin);
      FillRun(out + end, s_.background, c.Width() - end);
      for (int32_t i = begin, stop; i < end; i = stop) {
        const int32_t k = kOf[i];
        stop = runEnd[i];
        int32_t row;
        if ((i < axis) != leftFar) {
          row = ScaledLine(t_.nearScale[k], int64_t{y} + k, s_.rows.height);
        } else if (y >= int64_t{c.y0} + k && y < int64_t{c.y1} - k) {
          row = ScaledLine(t_.farScale[k], int64_t{y} - k, s_.rows.height);
        } else {
          FillRun(out + i, s_.background, stop - i);
          continue;
        }
        const PixelWord* from = s_.shown + RowOffset(row);
        for (int32_t j = i; j < stop; ++j) out[j] = from[column[j]];
      }
    }
    if (!s_.antiAlias) return;
    // The far half's top and bottom edges, from the axis to the far column.
    const int32_t u = TruncToInt32(pw * s_.inv);
    int32_t k = KOf(u);
    const int32_t hh = c.Height() >> 1;
    int32_t xe = leftFar ? xa - pw : xa + pw;
    if (k > hh) {  // the far edge would pass the axis row
      const long double shift = hw * s_.c * hh / static_cast<long double>(k);
      xe = TruncToInt32(leftFar ? xa - shift : xa + shift);
      k = hh;
    }
    Blend(leftFar ? EdgeWalk::LeftDown : EdgeWalk::RightDown, {xa, c.y1 - 1}, {xe, c.y1 - k - 1});
    Blend(leftFar ? EdgeWalk::LeftUp : EdgeWalk::RightUp, {xa, c.y0}, {xe, c.y0 + k});
  }

  // The vertical case with rows and columns exchanged.
  void PaintHorizontalAxis() const {
    const Cell& c = cell_;
    const int32_t hh = c.Height() >> 1, ph = TruncToInt32(s_.c * hh), ya = c.y0 + hh;
    const int32_t width = c.Width();
    PrepareScales(t_, c.x1, KOf(TruncToInt32(ph * s_.inv)));  // k is largest at the card's outer rows
    int32_t mapK = -1;
    bool mapNear = false;
    for (int32_t y = c.y0; y < c.y1; ++y) {
      PixelWord* out = s_.rows.Out(y) + c.x0;
      if (y < ya - ph || y >= ya + ph) {
        FillRun(out, s_.background, width);
        continue;
      }
      const int32_t u = TruncToInt32((y < ya ? ya - y : y - ya) * s_.inv);
      const int32_t row = std::clamp(y < ya ? ya - u : ya + u, 0, s_.rows.height - 1);
      const int32_t k = KOf(u);
      const bool near = (y < ya) != s_.farLow;
      // The far half shows only columns x0 + k .. x1 - k - 1 of the card.
      const int32_t begin = near ? 0 : static_cast<int32_t>(std::min<int64_t>(k, width));
      const int32_t end = near ? width : static_cast<int32_t>(std::max<int64_t>(int64_t{width} - k, begin));
      if (k != mapK || near != mapNear) {
        MapColumns(k, near, begin, end);
        mapK = k;
        mapNear = near;
      }
      FillRun(out, s_.background, begin);
      FillRun(out + end, s_.background, width - end);
      const PixelWord* from = s_.shown + RowOffset(row);
      const int32_t* column = t_.sourceLine.get();
      for (int32_t i = begin; i < end; ++i) out[i] = from[column[i]];
    }
    if (!s_.antiAlias) return;
    // The far half's left and right edges, from the axis row to the far row.
    const bool lowFar = s_.farLow;
    const int32_t u = TruncToInt32(ph * s_.inv);
    int32_t k = KOf(u);
    const int32_t hw = width >> 1;
    int32_t ye = lowFar ? ya - ph : ya + ph;
    if (k > hw) {  // the far edge would pass the axis column
      const long double shift = hh * s_.c * hw / static_cast<long double>(k);
      ye = TruncToInt32(lowFar ? ya - shift : ya + shift);
      k = hw;
    }
    Blend(lowFar ? EdgeWalk::LeftDown : EdgeWalk::LeftUp, {c.x1 - 1, ya}, {c.x1 - k - 1, ye});
    Blend(lowFar ? EdgeWalk::RightDown : EdgeWalk::RightUp, {c.x0, ya}, {c.x0 + k, ye});
  }

 private:
  // k = trunc(u x K), held to the tables: with K <= 1/4, never above u / 4.
  int32_t KOf(int32_t u) const {
    return std::clamp(TruncToInt32(u * s_.k), 0, static_cast<int32_t>(t_.size) - 1);
  }

  ptrdiff_t RowOffset(int32_t row) const { return static_cast<ptrdiff_t>(s_.rows.RowStart(row)); }

  // The source column of every column [begin, end) of the card for one k,
  // the near half's or the far half's scale about column x1.
  void MapColumns(int32_t k, bool near, int32_t begin, int32_t end) const {
    const long double scale = near ? t_.nearScale[k] : t_.farScale[k];
    for (int32_t i = begin; i < end; ++i) {
      const int64_t x = int64_t{cell_.x0} + i;
      t_.sourceLine[i] = ScaledLine(scale, near ? x + k : x - k, s_.rows.width);
    }
  }

  void Blend(EdgeWalk walk, EdgePoint from, EdgePoint to) const {
    _color_t background;
    std::memcpy(&background, &s_.background, sizeof background);
    const EdgeFrame frame{reinterpret_cast<uint8_t*>(s_.rows.output), s_.shownBytes, s_.shownBytes, s_.rows.width,
                          s_.rows.height, cell_.x0, cell_.y1, cell_.x1, cell_.y0, 2, &background};
    BlendEdge(walk, frame, from, to);
  }

  const Spin& s_;
  CardTables& t_;
  const Cell& cell_;
};

// Cell columns from the last to the first, within each the rows from the
// last to the first; the last column and row reach the frame's edge. With a
// nominal size of 0 only the last column (row) has pixels.
template <typename PaintCell>
void ForEachCellFromTheLast(int32_t width, int32_t height, int32_t dx, int32_t dy, PaintCell paint) {
  const int32_t cw = NominalCellSize(width, dx), ch = NominalCellSize(height, dy);
  for (int32_t i = dx - 1; i >= (cw == 0 ? dx - 1 : 0); --i) {
    const int32_t x0 = i * cw, x1 = i == dx - 1 ? width : x0 + cw;
    for (int32_t j = dy - 1; j >= (ch == 0 ? dy - 1 : 0); --j) {
      const int32_t y0 = j * ch, y1 = j == dy - 1 ? height : y0 + ch;
      paint(Cell{x0, x1, y0, y1});
    }
  }
}

int32_t SpinRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, transType)) return 0;
  const HostCalls host(ri);
  const int32_t dx = host.Field(divideX), dy = host.Field(divideY);
  const uint32_t background = host.PenColor(color);
  const int32_t dir = host.Field(direction);
  const bool smooth = host.Field(antiAlias) != 0, sharp = host.Field(sharpTines) != 0;
  if (FramePixelCount(ri) == 0) return 1;

  const int32_t a = TruncToInt32(180.0 * ri->Progress);
  switch (a) {
    case 0: CopyPixels(ri->Output, ri->InputA, 0, FramePixelCount(ri)); return 1;
    case 90: FillPixels(ri->Output, FramePixelCount(ri), background); return 1;
    case 180: CopyPixels(ri->Output, ri->InputB, 0, FramePixelCount(ri)); return 1;
    default: break;
  }
  if (a < 1 || a > 179) return 1;  // beyond the ends of the transition: nothing is written
  if (dx < 1 || dy < 1) return 1;  // no cells to cut: nothing is written
  const bool showsB = a > 90;
  const int32_t degree = showsB ? 180 - a : a;

  Spin s{};
  s.rows = FrameRows::Of(ri);
  s.shownBytes = showsB ? ri->InputB : ri->InputA;
  s.shown = showsB ? s.rows.inputB : s.rows.inputA;
  s.background = background;
  s.verticalAxis = dir != kTopToBottom && dir != kBottomToTop;
  s.farLow = (dir == kRightToLeft || dir == kBottomToTop) == showsB;
  s.c = kCosDegrees[degree];
  s.inv = 1.0L / s.c;
  s.k = kSinDegrees[degree] * 0.25;
  if (!sharp) {
    const long double r = static_cast<long double>(dx) / dy;
    if (dy > dx && s.verticalAxis) s.k = s.k * r;
    if (dx > dy && !s.verticalAxis) s.k = s.k / r;
  }
  s.antiAlias = smooth;

  CardTables tables;
  if (!tables.Allocate(static_cast<size_t>(std::max(ri->Width, ri->Height)) + 1)) return 1;  // no room: nothing is written
  ForEachCellFromTheLast(ri->Width, ri->Height, dx, dy, [&](const Cell& cell) {
    const Card card(s, tables, cell);
    if (s.verticalAxis) {
      card.PaintVerticalAxis();
    } else {
      card.PaintHorizontalAxis();
    }
  });
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(Spin, kTexts, kFields)
KR_TEST_PROFILE("Spin Away", .heavier = {"Divide_X=3", "Divide_Y=2", "Color=#FF2000", "IsAntiAlias=on", "Direction=3"})

// Chess Wipe: a chessboard of A and B squares sweeps across A, then B sweeps
// across the board; the whole sweep runs over twice the frame.
#include <algorithm>
#include <cmath>

#include "host/render_prologue.h"
#include "host/transition.h"
#include "raster/numeric.h"
#include "raster/pixel_rows.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Wipe/Chess Wipe", .signature = "Chess Wipe (ZE plug-in SDK effect)",
                             .displayName = "Chess Wipe", .description = "Va is wiped out by a chessboard."};

ClipFields clip;
FieldIndex direction;

constexpr auto kFields = FieldTable(clip,
    Selector(&direction, "Direction", "Direction",
             {{"Left > Right", 0}, {"Right > Left", 1}, {"Top > Bottom", 2}, {"Bottom > Top", 3}})
        .Help("Specifies the position where Vb starts to build up.")
        .Default(0));

// The board: 8 squares across the frame's smaller side, f = 8 / min(W, H) in
// single precision. A pixel at board coordinates (u, v), each a whole number
// of pixels times f in single precision, lies in square (trunc(u + 0.5),
// trunc(v + 0.5)) (the half added in double) and shows B where the two add
// up odd.
class Board {
 public:
  explicit Board(float f) : f_(f), pixelsPerSquare_(1.0 / static_cast<double>(f)) {}

  int32_t Square(int64_t pixels) const {
    return TruncToInt32(static_cast<double>(static_cast<float>(pixels) * f_) + 0.5);
  }

  // Columns begin..end - 1 of one row whose squares are in row `square`:
  // one copy per run of columns in the same square.
  void PaintRow(const FrameRows& rows, int32_t y, int32_t square, int32_t begin, int32_t end) const {
    PixelWord* out = rows.Out(y);
    const PixelWord* a = rows.A(y);
    const PixelWord* b = rows.B(y);
    for (int32_t x = begin; x < end;) {
      const int32_t column = Square(x);
      const int32_t next = NextSquareStart(x, column, end);
      const bool showsB = ((static_cast<uint32_t>(column) + static_cast<uint32_t>(square)) & 1u) != 0;
      CopyRun(out + x, (showsB ? b : a) + x, next - x);
      x = next;
    }
  }

 private:
  // The first column after x (in square `column`) that lies in another
  // square, at most `end`: estimated, then put right against Square itself.
  int32_t NextSquareStart(int32_t x, int32_t column, int32_t end) const {
    const double estimate = std::ceil((column + 0.5) * pixelsPerSquare_);
    int32_t next = estimate >= end ? end : estimate <= x + 1 ? x + 1 : static_cast<int32_t>(estimate);
    while (next > x + 1 && Square(next - 1) != column) --next;
    while (next < end && Square(next) == column) ++next;
    return next;
  }

  float f_;
  double pixelsPerSquare_;
};

enum class Show : uint8_t { A, B, Board };

// A sweep across columns: the columns below `cut` show `low`, the others
// `high`; the board's row of squares is taken from v = (H - 1 - y) f.
struct ColumnSweep {
  Show low;
  int32_t cut;
  Show high;
};

// A sweep across rows: the rows below `cut` show `low`, the others `high`;
// on the board v = (origin - y) f, or (y - origin) f when counted upwards.
struct RowSweep {
  Show low;
  int32_t cut;
  Show high;
  int64_t origin;
  bool upwards;
};

void PaintRun(const FrameRows& rows, const Board& board, Show show, int32_t y, int32_t square, int32_t begin,
              int32_t end) {
  switch (show) {
    case Show::A: CopyRun(rows.Out(y) + begin, rows.A(y) + begin, end - begin); break;
    case Show::B: CopyRun(rows.Out(y) + begin, rows.B(y) + begin, end - begin); break;
    case Show::Board: board.PaintRow(rows, y, square, begin, end); break;
  }
}

void PaintColumns(const FrameRows& rows, const Board& board, const ColumnSweep& s) {
  for (int32_t y = 0; y < rows.height; ++y) {
    const int32_t square = board.Square(int64_t{rows.height} - 1 - y);
    PaintRun(rows, board, s.low, y, square, 0, s.cut);
    PaintRun(rows, board, s.high, y, square, s.cut, rows.width);
  }
}

void PaintRows(const FrameRows& rows, const Board& board, const RowSweep& s) {
  for (int32_t y = 0; y < rows.height; ++y) {
    const int32_t square = board.Square(s.upwards ? y - s.origin : s.origin - y);
    PaintRun(rows, board, y < s.cut ? s.low : s.high, y, square, 0, rows.width);
  }
}

// How far the sweep has come into its half: a Progress outside 0..1 (or NaN)
// would put the edge outside the frame, so it is held to 0..extent.
int32_t Edge(double distance, int32_t extent) { return TruncToRange(distance, int32_t{0}, extent); }

int32_t ChessWipeRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, clip.transType)) return 0;
  const int32_t travel = HostCalls(ri).Field(direction);
  if (ri->Width <= 0 || ri->Height <= 0) return 1;
  const FrameRows rows = FrameRows::Of(ri);
  const int32_t w = rows.width, h = rows.height;
  const Board board(8.0f / static_cast<float>(std::min(w, h)));
  const double p = ri->Progress;

  // The sweep runs over twice the extent: the board comes in during the
  // first half, B during the second. A NaN Progress counts as the first half.
  if (travel == 2) {
    const double d = 2.0 * h * p;
    if (!(d >= h)) {
      const int32_t e = h - Edge(d, h);
      PaintRows(rows, board, {Show::A, e, Show::Board, 0, true});
    } else {
      const int32_t e = h - Edge(d - h, h);
      PaintRows(rows, board, {Show::Board, e, Show::B, int64_t{e} - 1, false});
    }
  } else if (travel == 3) {
    // Here the sweep is measured in single precision.
    const double d = static_cast<float>(2.0 * h) * static_cast<float>(p);
    if (!(d >= h)) {
      const int32_t e = Edge(d, h);
      PaintRows(rows, board, {Show::Board, e, Show::A, int64_t{e} - 1, false});
    } else {
      const int32_t e = Edge(d - h, h);
      PaintRows(rows, board, {Show::B, e, Show::Board, int64_t{h} - 1 + e, false});
    }
  } else {
    const double d = 2.0 * w * p;
    const bool firstHalf = !(d >= w);
    const int32_t e = Edge(firstHalf ? d : d - w, w);
    if (travel == 1) {
      PaintColumns(rows, board, firstHalf ? ColumnSweep{Show::A, w - e, Show::Board}
                                          : ColumnSweep{Show::Board, w - e, Show::B});
    } else {  // "Left > Right", also every value but 1, 2 and 3
      PaintColumns(rows, board, firstHalf ? ColumnSweep{Show::Board, e, Show::A}
                                          : ColumnSweep{Show::B, e, Show::Board});
    }
  }
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(ChessWipe, kTexts, kFields)
KR_TEST_PROFILE("Chess Wipe", .heavier = {"Direction=3"})

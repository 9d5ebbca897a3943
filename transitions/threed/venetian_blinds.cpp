// Venetian Blinds: the frame is cut into blinds. In every blind B grows from
// one edge as a squeezed copy of its own band while A keeps the rest of the
// band unscaled, a pen line between the two, and an optional box blur (the
// "Gauss Filter") run in place over the seam. The blinds run across the
// picture (bands of rows, B growing down from the blind's upper row) or down
// it (bands of columns, B growing from the blind's left column).
#include <algorithm>

#include "host/render_prologue.h"
#include "host/transition.h"
#include "raster/frame.h"
#include "raster/numeric.h"
#include "raster/pixel_rows.h"
#include "raster/row_box_mean.h"
#include "raster/scratch.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/3D/Venetian Blinds",
                             .signature = "Venetian Blinds (ZE plug-in SDK effect)", .displayName = "Venetian Blinds",
                             .description = "Va closes like venetian blinds."};

ClipFields clip;
FieldIndex orientation, numberOfBlinds, color, borderWidth, smoothingFactor;

// The orientation is declared so that the user can reach the vertical blinds.
constexpr auto kFields = FieldTable(clip,
    Selector(&orientation, "Orientation", "Orientation", {{"Horizontal", 0}, {"Vertical", 1}})
        .Help("Specifies whether the blinds run across or down the picture.")
        .Default(0),
    Long(&numberOfBlinds, "NumberOfBlinds", "Number of Blinds (1..20)", 1, 20)
        .Limits()
        .Help("Defines the number of blinds.")
        .Default(8),
    Color(&color, "Color", "Pen Color").Help("Defines the color of the pens.").DefaultColor(0, 0, 0),
    Long(&borderWidth, "BorderWidth", "Pen Thickness (0..10)", 0, 10)
        .Limits()
        .Help("Specifies the thickness of the individual pens.")
        .Default(0),
    Selector(&smoothingFactor, "SmoothingFactor", "Gauss Filter", kGaussFilterItems)
        .Help("This filter allows you to add a kind of blur effect to the transition.")
        .Default(0));

// One blind along the axis the blinds divide: [lo, hi), and d, the length of
// B's part (the same in every blind). 64-bit, so that any Progress is safe.
struct Blind {
  int64_t lo, hi, d;
};

// The blinds, last to first: `count` of them over `length` rows or columns.
template <typename Paint>
void ForEachBlind(int32_t length, int32_t count, double t, Paint paint) {
  const double size = static_cast<double>(length) / count;
  const int64_t d = TruncToInt32(t * size);
  for (int32_t i = count - 1; i >= 0; --i) {
    const int64_t lo = TruncToInt32(i * size);
    const int64_t hi = i == count - 1 ? length : TruncToInt32((i + 1) * size);
    paint(Blind{lo, hi, d});
  }
}

// [begin, end) held to [0, limit).
struct Span {
  int32_t begin, end;
};
Span Within(int64_t begin, int64_t end, int32_t limit) {
  const int64_t b = std::clamp<int64_t>(begin, 0, limit), e = std::clamp<int64_t>(end, 0, limit);
  return {static_cast<int32_t>(b), static_cast<int32_t>(std::max(b, e))};
}

// The seam blur: rows [first, end) ascending, each from its last column to
// its first, every mean reading the pixels already replaced.
void BlurRows(const FrameRows& f, RowBoxMean& mean, int64_t first, int64_t end) {
  const Span rows = Within(first, end, f.height);
  for (int32_t y = rows.begin; y < rows.end; ++y) {
    mean.StartRow(y, 0, f.width);
    mean.ReplaceRunDown(0, f.width);
  }
}

// Blinds across the picture: A from the blind's first row, the pen, then B's
// band squeezed into its last d rows. Every range is held to the frame.
void PaintRows(const FrameRows& f, int32_t count, double t, uint32_t pen, int32_t pw, int32_t box) {
  const int32_t W = f.width, H = f.height;
  const double perT = 1.0 / t;
  RowBoxMean mean(f, box);
  ForEachBlind(H, count, t, [&](const Blind& b) {
    const int64_t s = b.hi - b.d, e = std::max(s - pw, b.lo);
    const Span aRows = Within(b.lo, e, H), penRows = Within(e, s, H), bRows = Within(s, b.hi, H);
    for (int32_t y = aRows.begin; y < aRows.end; ++y) CopyRun(f.Out(y), f.A(y), W);
    for (int32_t y = penRows.begin; y < penRows.end; ++y) FillRun(f.Out(y), pen, W);
    for (int32_t y = bRows.begin; y < bRows.end; ++y) {
      // Row s + m reads B's row trunc(lo + m / t) + 1, which can reach the
      // next blind or, in the last, row H: held to the frame.
      const int64_t row = int64_t{TruncToInt32(b.lo + (y - s) * perT)} + 1;
      CopyRun(f.Out(y), f.B(static_cast<int32_t>(std::clamp<int64_t>(row, 0, H - 1))), W);
    }
    if (box != 0) BlurRows(f, mean, s - box / 2, s + box / 2);
  });
}

// Blinds down the picture: B's band squeezed into the blind's first d
// columns, the pen, then A. The blur runs over the seam's columns in
// ascending order, each from its top row down: the blur of rows on a
// transposed copy of the columns it reads.
void PaintColumns(const FrameRows& f, int32_t count, double t, uint32_t pen, int32_t pw, int32_t box) {
  const int32_t W = f.width, H = f.height, half = box / 2;
  Scratch<int32_t> source = AllocateScratch<int32_t>(static_cast<size_t>(W));
  Scratch<uint32_t> turned = AllocateScratch<uint32_t>(static_cast<size_t>(4 * half + 1) * static_cast<size_t>(H));
  if (!source) return;  // without the column map nothing is drawn
  ForEachBlind(W, count, t, [&](const Blind& b) {
    const int64_t seam = b.lo + b.d, e = std::min(seam + pw, b.hi);
    const Span bCols = Within(b.lo, seam, W), penCols = Within(seam, e, W), aCols = Within(e, b.hi, W);
    // Column lo + j reads B's column trunc(hi - (d - 1 - j) / t) - 1, which
    // is -1 in the first blind near Progress 1: held to the frame.
    for (int32_t x = bCols.begin; x < bCols.end; ++x) {
      const int64_t column = int64_t{TruncToInt32(b.hi - static_cast<double>(b.d - 1 - (x - b.lo)) / t)} - 1;
      source[x] = static_cast<int32_t>(std::clamp<int64_t>(column, 0, W - 1));
    }
    for (int32_t y = H - 1; y >= 0; --y) {
      PixelWord* out = f.Out(y);
      const PixelWord* bRow = f.B(y);
      for (int32_t x = bCols.begin; x < bCols.end; ++x) out[x] = bRow[source[x]];
      FillRun(out + penCols.begin, pen, penCols.end - penCols.begin);
      CopyRun(out + aCols.begin, f.A(y) + aCols.begin, aCols.end - aCols.begin);
    }
    const Span blurred = Within(seam - half, seam + half, W);
    if (box == 0 || !turned || blurred.begin == blurred.end) return;  // without the copy the seam stays sharp
    // The copy holds every column the means read; where it stops short of
    // the seam's reach it stops at the frame's edge, so holding a read to
    // the copy holds it to the frame.
    const Span read = Within(int64_t{blurred.begin} - half, int64_t{blurred.end} + half, W);
    const FrameRows copy{nullptr, nullptr, reinterpret_cast<PixelWord*>(turned.get()), H, read.end - read.begin};
    for (int32_t y = 0; y < H; ++y) {
      for (int32_t x = read.begin; x < read.end; ++x) copy.Out(x - read.begin)[y] = f.Out(y)[x];
    }
    RowBoxMean mean(copy, box);
    BlurRows(copy, mean, blurred.begin - read.begin, blurred.end - read.begin);
    for (int32_t y = 0; y < H; ++y) {
      for (int32_t x = blurred.begin; x < blurred.end; ++x) f.Out(y)[x] = copy.Out(x - read.begin)[y];
    }
  });
}

int32_t VenetianBlindsRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, clip.transType)) return 0;
  const HostCalls host(ri);
  const bool vertical = host.Field(orientation) == 1;
  const int32_t n = host.Field(numberOfBlinds);
  const uint32_t pen = host.PenColor(color);
  const int32_t pw = host.Field(borderWidth);
  const int32_t box = GaussFilterBox(host.Field(smoothingFactor));
  if (FramePixelCount(ri) == 0) return 1;

  const FrameRows f = FrameRows::Of(ri);
  const int32_t length = vertical ? f.width : f.height;
  // No blinds for N <= 0 (nothing is drawn); more than the declared 20 and
  // more than one a row (column) only blur the same seams again: held there.
  const int32_t count = std::min(n, std::max(length, 20));
  if (count <= 0) return 1;
  if (vertical) {
    PaintColumns(f, count, ri->Progress, pen, pw, box);
  } else {
    PaintRows(f, count, ri->Progress, pen, pw, box);
  }
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(VenetianBlinds, kTexts, kFields)
KR_TEST_PROFILE("Venetian Blinds", .heavier = {"NumberOfBlinds=20", "SmoothingFactor=Large", "BorderWidth=10", "Color=#FF2000"})

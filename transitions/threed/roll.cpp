// Roll: A rolls up from one edge into a roll of radius R = L / 12 that
// travels across the frame; behind it B shows, ahead of it the flat A. The
// roll carries A's picture, shaded like a cylinder; every edge runs along
// whole columns or rows, so all geometry is per along position.
#include <cmath>

#include "host/render_prologue.h"
#include "host/transition.h"
#include "raster/exact_trig.h"
#include "raster/frame.h"
#include "raster/numeric.h"
#include "raster/pixel_rows.h"
#include "raster/scratch.h"
#include "transitions/threed/sheet.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/3D/Roll", .signature = "Roll (Kr plug-in SDK effect)",
                             .displayName = "Roll", .description = "Rolls Va like a sheet of paper and shows Vb."};

ClipFields clip;
FieldIndex direction, transparent;

constexpr auto kFields = FieldTable(clip,
    Selector(&direction, "Direction", "Direction",
             {{"Left > Right", 0}, {"Right > Left", 1}, {"Top > Bottom", 2}, {"Bottom > Top", 3}})
        .Help("Specifies the edge where the rolling starts.")
        .Default(0),
    Bool(&transparent, "Transparent", "Transparent")
        .HideCurve()
        .Help("Lets Vb show through the roll.")
        .Default(0));

enum class Travel : int32_t { LeftRight, RightLeft, TopBottom, BottomTop };

// One layer of the roll at an along position: the sheet's row or column it
// shows (none when that part is not wound or lies beyond the sheet) and its shade.
struct Layer {
  int32_t source = -1;
  uint32_t shade = 256;
  bool Exists() const { return source >= 0; }
};

// What an along position shows: the base clip, then the lower and upper layer.
struct Span {
  bool baseIsB = false;
  Layer lower, upper;
  bool Plain() const { return !lower.Exists() && !upper.Exists(); }
};

class RollGeometry {
 public:
  RollGeometry(Travel travel, int32_t w, int32_t h, double p)
      : travel_(travel), w_(w), h_(h), length_(Horizontal() ? w : h) {
    const double l = length_;
    r_ = l / 12;
    c_ = p * ((l + r_) + 1);
  }

  bool Horizontal() const { return travel_ == Travel::LeftRight || travel_ == Travel::RightLeft; }
  int32_t Length() const { return length_; }

  // The along position i is a column for horizontal travel, a row otherwise.
  Span At(int32_t i) const {
    const double centre = i + 0.5;
    double a = centre;
    if (travel_ == Travel::RightLeft) a = w_ - centre;
    if (travel_ == Travel::TopBottom) a = h_ - centre;
    const double delta = c_ - a;
    Span s;
    s.baseIsB = delta >= 0;
    if (-r_ < delta && delta < r_) {
      const double as = Asin(delta / r_);
      const uint32_t shade = ShadeWeight(0.5 + 0.5 * std::sqrt(1 - (delta / r_) * (delta / r_)));
      if (delta >= 0) s.lower = LayerAt(c_ - r_ * as, shade);
      s.upper = LayerAt(c_ - r_ * (kPi - as), shade);
    }
    return s;
  }

 private:
  // Sheet position m wound into the roll, when it exists (0 <= m < L).
  Layer LayerAt(double m, uint32_t shade) const {
    if (!(m >= 0 && m < length_)) return {};
    double index = m;
    if (travel_ == Travel::RightLeft) index = w_ - m;
    if (travel_ == Travel::TopBottom) index = h_ - m;
    // W - m may round up to W itself: held to the frame like every read.
    const int32_t last = length_ - 1;
    return {std::min(FloorToInt32(index), last), shade};
  }

  Travel travel_;
  int32_t w_, h_, length_;
  double r_ = 0, c_ = 0;
};

// One layer over what lies beneath: at half strength when transparent.
uint32_t Cover(uint32_t beneath, uint32_t sheet, uint32_t shade, bool seeThrough) {
  const uint32_t lit = ShadeWeighted(sheet, shade);
  return seeThrough ? MixWeighted(beneath, lit, 128) : lit;
}

// What lies beneath with both layers over it; sheetAt(source) reads the
// sheet's row or column `source` where the pixel is.
template <typename SheetAt>
uint32_t Rolled(uint32_t col, const Span& s, SheetAt sheetAt, bool seeThrough) {
  for (const Layer* layer : {&s.lower, &s.upper}) {
    if (layer->Exists()) col = Cover(col, sheetAt(layer->source), layer->shade, seeThrough);
  }
  return col;
}

// Horizontal travel: a table over the columns, then every row in runs.
void RenderAcrossColumns(const FrameRows& f, const RollGeometry& g, bool seeThrough) {
  Scratch<Span> spans = AllocateScratch<Span>(static_cast<size_t>(f.width));
  if (!spans) {  // no memory for the column table: the frame shows A
    ShowA(f);
    return;
  }
  for (int32_t x = 0; x < f.width; ++x) spans[x] = g.At(x);
  for (int32_t y = 0; y < f.height; ++y) {
    PixelWord* out = f.Out(y);
    const PixelWord* rowA = f.A(y);
    const PixelWord* rowB = f.B(y);
    for (int32_t x = 0; x < f.width;) {
      const Span& s = spans[x];
      if (s.Plain()) {
        int32_t end = x + 1;
        while (end < f.width && spans[end].Plain() && spans[end].baseIsB == s.baseIsB) ++end;
        CopyRun(out + x, (s.baseIsB ? rowB : rowA) + x, end - x);
        x = end;
        continue;
      }
      // The sheet's columns are read on the pixel's own row.
      out[x] = Rolled((s.baseIsB ? rowB : rowA)[x], s, [&](int32_t source) { return rowA[source]; }, seeThrough);
      ++x;
    }
  }
}

// Vertical travel: one span per row; the sheet's rows are read in the pixel's own column.
void RenderAcrossRows(const FrameRows& f, const RollGeometry& g, bool seeThrough) {
  for (int32_t y = 0; y < f.height; ++y) {
    const Span s = g.At(y);
    const PixelWord* base = s.baseIsB ? f.B(y) : f.A(y);
    if (s.Plain()) {
      CopyRun(f.Out(y), base, f.width);
      continue;
    }
    PixelWord* out = f.Out(y);
    for (int32_t x = 0; x < f.width; ++x) {
      out[x] = Rolled(base[x], s, [&](int32_t source) { return f.A(source)[x]; }, seeThrough);
    }
  }
}

int32_t RollRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, clip.transType)) return 0;
  const HostCalls host(ri);
  const int32_t d = host.Field(direction);
  const Travel travel = d >= 1 && d <= 3 ? static_cast<Travel>(d) : Travel::LeftRight;
  const bool seeThrough = host.Field(transparent) != 0;
  if (FrameDoneAtTheEnds(ri)) return 1;
  const double p = ri->Progress;
  const FrameRows f = FrameRows::Of(ri);
  const RollGeometry g(travel, f.width, f.height, p);
  if (g.Horizontal()) {
    RenderAcrossColumns(f, g, seeThrough);
  } else {
    RenderAcrossRows(f, g, seeThrough);
  }
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(Roll, kTexts, kFields)
KR_TEST_PROFILE("Roll", .heavier = {"Transparent=on"})

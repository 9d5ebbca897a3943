// Iris Round: in every cell a circle centred in the cell opens on B (or
// closes on A), a pen ring outside its edge; optionally with soft edges.
#include <cmath>

#include "host/transition.h"
#include "transitions/pengrid/iris_frame.h"
#include "transitions/pengrid/soft_edge.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Iris/Iris Round", .signature = "Iris Round (ZE plug-in SDK effect)",
                             .displayName = "Iris Round", .description = "Va opens like a round iris showing Vb."};

PenGridFields fields;
FieldIndex antiAliasing;

constexpr auto kFields = WithField(PenGridFieldTable(fields, kIrisDirectionHelp, kOpenCloseItems),
                                   AntiAliasingField(&antiAliasing));

// Largest s >= 0 with s * s < m, or -1 when there is none.
int64_t HalfWidthBelow(int64_t m) {
  if (m <= 0) return -1;
  int64_t s = static_cast<int64_t>(std::sqrt(static_cast<double>(m - 1)));
  while (s > 0 && s * s > m - 1) --s;
  while ((s + 1) * (s + 1) <= m - 1) ++s;
  return s;
}

class RoundShape {
 public:
  explicit RoundShape(const IrisFrame& f) : f_(f) {
    // The cell diagonal from the integer sum of squares, rooted in extended precision, stored as single.
    const float diagonal =
        RoundToSingle(std::sqrt(static_cast<long double>(int64_t{f.cellWidth} * f.cellWidth + int64_t{f.cellHeight} * f.cellHeight)));
    float d = RoundToSingle(f.progress * static_cast<long double>(diagonal));
    if (f.close) d = RoundToSingle(static_cast<long double>(diagonal) - d);
    rad_ = d * 0.5f;
    // Below 2^50 for frames up to 2^24 pixels a side: the conversions are exact.
    r2_ = static_cast<int64_t>(static_cast<long double>(rad_) * rad_);
    const int64_t ro = TruncToInt32(f.penThickness + static_cast<long double>(rad_));
    ro2_ = ro * ro;
    limits_ = {r2_, ro2_, 0, 0};  // a limit of 0 cuts nowhere
    if (f.option != 0) PrepareSoftEdges();
  }

  void Paint(const Cell& c) const {
    const int32_t cx = c.x0 + f_.centreX, cy = c.y0 + f_.centreY;
    for (int32_t y = c.y0; y < c.y1; ++y) {
      const int64_t uy2 = int64_t{cy - y} * (cy - y);
      auto q = [&](int32_t x) { return int64_t{cx - x} * (cx - x) + uy2; };
      // The source changes only where q crosses one of the limits.
      std::array<int32_t, 2 * kLimitCount> cuts{};
      size_t count = 0;
      for (const int64_t limit : limits_) {
        const int64_t s = HalfWidthBelow(limit - uy2);
        if (s < 0) continue;
        cuts[count++] = static_cast<int32_t>(cx - s);
        cuts[count++] = static_cast<int32_t>(std::min<int64_t>(cx + s + 1, c.x1));
      }
      ForEachRun(
          c.x0, c.x1, std::span(cuts.data(), count), [&](int32_t x) { return SourceAt(q(x)); },
          [&](Source s, int32_t begin, int32_t end) {
            if (s != Source::Blend) {
              f_.PaintRun(s, y, begin, end);
              return;
            }
            PixelWord* out = f_.rows.Out(y);
            for (int32_t x = begin; x < end; ++x) out[x] = SoftPixel(x, y, cx, q(x));
          });
    }
  }

 private:
  static constexpr size_t kLimitCount = 4;

  // Without soft edges: inside below r2, outside from ro2 on, the pen between.
  // With them, Blend marks where a pixel may lie within the softness of an
  // edge; elsewhere the hard answer holds (the softness never exceeds 0.71
  // and the limits keep 0.75 plus a margin from the edges).
  Source SourceAt(int64_t q) const {
    if (f_.option == 0) return q < r2_ ? Source::Inside : q >= ro2_ ? Source::Outside : Source::Pen;
    if (q <= insideUpTo_) return Source::Inside;
    if (q >= outsideFrom_) return Source::Outside;
    if (q >= penFrom_ && q <= penUpTo_) return Source::Pen;
    return Source::Blend;
  }

  void PrepareSoftEdges() {
    const double rad = rad_, t = f_.penThickness;
    auto below = [](double v) { return static_cast<int64_t>(std::floor(v * v)) - 2; };
    auto above = [](double v) { return static_cast<int64_t>(std::ceil(v * v)) + 2; };
    insideUpTo_ = rad >= 2.0 ? below(rad - 0.75) : -1;
    outsideFrom_ = std::max(ro2_, above(rad + t + 0.75));
    penFrom_ = above(rad + 0.75);
    penUpTo_ = t >= 2.0 ? std::min(ro2_ - 1, below(rad + t - 0.75)) : -1;
    limits_ = {insideUpTo_ + 1, outsideFrom_, penFrom_, penUpTo_ + 1};
  }

  uint32_t SoftPixel(int32_t x, int32_t y, int32_t cx, int64_t q) const {
    const uint32_t inside = f_.InsideRow(y)[x], outside = f_.OutsideRow(y)[x], pen = f_.pen;
    const bool noPen = f_.penThickness == 0;
    const long double dist = std::sqrt(static_cast<long double>(q));
    SoftnessBounds k(f_.centreX, f_.centreY, x, y, cx);
    if (q < r2_) {
      const long double e = rad_ - dist;
      return k.Exceeds(e) ? EdgeBlend(noPen ? outside : pen, inside, k.Mix(e)) : inside;
    }
    if (q >= ro2_) {
      const long double e = (dist - rad_) - f_.penThickness;
      return k.Exceeds(e) ? EdgeBlend(noPen ? inside : pen, outside, k.Mix(e)) : outside;
    }
    const long double e = dist - rad_;
    if (k.Exceeds(e)) return EdgeBlend(inside, noPen ? outside : pen, k.Mix(e));
    const long double toOutside = f_.penThickness - e;
    if (k.Exceeds(toOutside)) return EdgeBlend(outside, noPen ? inside : pen, k.Mix(toOutside));
    return pen;
  }

  const IrisFrame& f_;
  float rad_;     // the radius, kept in single precision
  int64_t r2_;    // below it: inside
  int64_t ro2_;   // from it on: outside
  int64_t insideUpTo_ = -1, outsideFrom_ = 0, penFrom_ = 0, penUpTo_ = -1;
  std::array<int64_t, kLimitCount> limits_{};  // the values of q where the source may change
};

int32_t IrisRoundRender(t_KrRenderInfo* ri) {
  return RenderIris<RoundShape>(ri, fields, PenWidening::None, &antiAliasing);
}

}  // namespace
}  // namespace krl

KR_TRANSITION(IrisRound, kTexts, kFields)
KR_TEST_PROFILE("Iris Round", .heavier = {"Divide_X=3", "Divide_Y=2", "BorderWidth=4", "Color=#FF2000", "Anti-Aliasing=on"})

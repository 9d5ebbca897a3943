// Iris Star: in every cell a five-pointed star centred in the cell opens on
// B (or closes on A), the pen outside its edge; optionally softened by a box
// filter run in place over the star, the inner star twice.
#include <algorithm>

#include "host/transition.h"
#include "transitions/pengrid/iris_frame.h"
#include "raster/row_box_mean.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Iris/Iris Star", .signature = "Iris Star (ZE plug-in SDK effect)",
                             .displayName = "Iris Star", .description = "Va opens like a star-shaped iris showing Vb."};

PenGridFields fields;
FieldIndex smoothingFactor;

constexpr auto kFields = WithField(
    PenGridFieldTable(fields, kIrisDirectionHelp, kOpenCloseItems),
    Selector(&smoothingFactor, "SmoothingFactor", "Gauss Filter", kGaussFilterItems)
        .Help("This filter allows you to add a kind of blur effect.")
        .Default(0));

// The box side for a "Gauss Filter" item, odd: None and unknown values take
// the mean of the pixel alone.
int32_t BoxSide(int32_t smoothing) { return GaussFilterBox(smoothing) | 1; }

// The star's reach: the larger of the two half-sides over the sine and cosine
// of its tips, each quotient in extended precision stored as single.
float Reach(int32_t cw, int32_t ch) {
  return std::max(RoundToSingle(static_cast<long double>(cw) * 0.5 / 0.951),
                  RoundToSingle(static_cast<long double>(ch) * 0.5 / 0.809));
}

int32_t Radius(float reach, double p, bool close) {
  const int32_t open = TruncToInt32(RoundToSingle(static_cast<long double>(reach) * p));
  return close ? TruncToInt32(static_cast<long double>(reach) - open) : open;
}

int32_t Trunc(long double v) { return TruncToInt32(v); }

// Ten vertices, tips at radius tip and valleys at radius valley, the first tip
// towards the higher rows: a point u above the centre lies in row
// y1 - (hy - u). The constants are the star's own (0.587 is not sin 36).
std::array<Vertex, 10> Star(const Cell& c, int32_t hx, int32_t hy, int32_t tip, int32_t valley) {
  const long double P = tip, Q = valley;
  const int32_t x0 = c.x0, y1 = c.y1;
  const int32_t row1 = y1 - Trunc(hy - Q * 0.809), row2 = y1 - Trunc(hy - P * 0.309);
  const int32_t row3 = y1 - Trunc(Q * 0.309 + hy), row4 = y1 - Trunc(P * 0.809 + hy);
  return {{
      {x0 + hx, y1 - (hy - tip)},
      {x0 + Trunc(Q * 0.587 + hx), row1},
      {x0 + Trunc(hx + P * 0.951), row2},
      {x0 + Trunc(hx + Q * 0.951), row3},
      {x0 + Trunc(hx + P * 0.587), row4},
      {x0 + hx, y1 - (valley + hy)},
      {x0 + Trunc(hx - P * 0.587), row4},
      {x0 + Trunc(hx - Q * 0.951), row3},
      {x0 + Trunc(hx - P * 0.951), row2},
      {x0 + Trunc(hx - Q * 0.587), row1},
  }};
}

// The star's pixels in one row of a cell: a span replaced once in the outer
// star, twice in the inner one.
class StarSpans {
 public:
  StarSpans() = default;
  StarSpans(const Cell& c, int32_t row, std::span<const Vertex> inner, std::span<const Vertex> outer) : y(row) {
    enum : int { kOuter = 1, kInner = 2 };
    const RowCrossings in(inner, y), out(outer, y);
    PairCuts cuts(in, out);
    ForEachRun(
        c.x0, c.x1, cuts.Columns(),
        [&](int32_t x) { return (out.Inside(x) ? kOuter : 0) | (in.Inside(x) ? kInner : 0); },
        [&](int membership, int32_t begin, int32_t end) {
          if (membership == 0) return;
          spans_[count_++] = {begin, end, (membership & kOuter ? 1 : 0) + (membership & kInner ? 1 : 0)};
        });
  }
  std::span<const RowBoxMean::Span> Spans() const { return {spans_.data(), count_}; }
  // The columns the spans cover, from the first to the last; empty spans
  // cover nothing anywhere.
  int32_t Begin() const { return count_ != 0 ? spans_[0].begin : INT32_MAX; }
  int32_t End() const { return count_ != 0 ? spans_[count_ - 1].end : INT32_MIN; }

  int32_t y = 0;

 private:
  // Runs change only at the cuts: at most one more than there are cuts.
  std::array<RowBoxMean::Span, 2 * RowCrossings::kMaxVertices + 1> spans_;  // the first count_ hold spans
  size_t count_ = 0;
};

class StarShape {
 public:
  explicit StarShape(const IrisFrame& f)
      : f_(f), r_(Radius(Reach(f.cellWidth, f.cellHeight), f.progress, f.close)), k_(BoxSide(f.option)) {}

  void Paint(const Cell& c) const {
    const int32_t outerTip = TruncToInt32(RoundToSingle(f_.penThickness * 1.5 + 2.0 * r_));
    const auto inner = Star(c, f_.centreX, f_.centreY, 2 * r_, r_);
    const auto outer = Star(c, f_.centreX, f_.centreY, outerTip, f_.penThickness + r_);
    PaintPolygonPair(f_, c, inner, outer);
    Smooth(c, inner, outer);
  }

 private:
  // In place, row by row from y0 and column by column from x0: the mean reads
  // pixels this pass has already replaced, and the inner star is averaged a
  // second time right after the first. Rows go to the mean in pairs.
  void Smooth(const Cell& c, std::span<const Vertex> inner, std::span<const Vertex> outer) const {
    if (k_ == 1) {  // the mean of one pixel only makes it opaque
      for (int32_t y = c.y0; y < c.y1; ++y) {
        const StarSpans row(c, y, inner, outer);
        PixelWord* out = f_.rows.Out(y);
        for (const RowBoxMean::Span s : row.Spans()) {  // a copy: the pixels may alias anything
          for (int32_t x = s.begin; x < s.end; ++x) out[x] |= 0xFF000000u;
        }
      }
      return;
    }
    RowBoxMean mean(f_.rows, k_);
    for (int32_t y = c.y0; y < c.y1; y += 2) {
      const StarSpans first(c, y, inner, outer);
      const StarSpans second = y + 1 < c.y1 ? StarSpans(c, y + 1, inner, outer) : StarSpans();
      // The sums are kept over the columns the two rows' means read.
      const int32_t begin = std::min(first.Begin(), second.Begin()), end = std::max(first.End(), second.End());
      mean.ReplaceRowPair(y, begin, end, first.Spans(), second.Spans());
    }
  }

  const IrisFrame& f_;
  int32_t r_;  // the inner star's valley radius; its tips reach 2r
  int32_t k_;  // box side
};

int32_t IrisStarRender(t_KrRenderInfo* ri) {
  return RenderIris<StarShape>(ri, fields, PenWidening::None, &smoothingFactor);
}

}  // namespace
}  // namespace krl

KR_TRANSITION(IrisStar, kTexts, kFields)
KR_TEST_PROFILE("Iris Star", .heavier = {"Divide_X=2", "Divide_Y=2", "BorderWidth=4", "Color=#FF2000", "SmoothingFactor=Large"})

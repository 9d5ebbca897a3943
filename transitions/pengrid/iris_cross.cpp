// Iris Cross: in every cell a cross of two bars, each running across the
// whole cell, opens on B (or closes on A); the pen lines the bars' edges on
// their inside.
#include "host/transition.h"
#include "transitions/pengrid/iris_frame.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Iris/Iris Cross", .signature = "Iris Cross (ZE plug-in SDK effect)",
                             .displayName = "Iris Cross", .description = "Va opens like a cross iris showing Vb."};

PenGridFields fields;

constexpr auto kFields = PenGridFieldTable(fields, kIrisDirectionHelp, kIrisItems);

// A bar centred in [origin, origin + size).
Interval Bar(int32_t origin, int32_t size, int32_t thickness) {
  const Interval bar = CentredBar(size, thickness);
  return {origin + bar.begin, origin + bar.end};
}

Interval Shrunk(Interval s, int32_t by) { return {s.begin + by, s.end - by}; }

class CrossShape {
 public:
  explicit CrossShape(const IrisFrame& f) : f_(f) {}

  // The frame visits rows of cells inside columns; cells never overlap and
  // read nothing of each other, so the picture is the same in any order.
  void Paint(const Cell& c) const {
    const int32_t w = c.Width(), h = c.Height();
    int32_t a = SingleRoundedShare(w, f_.progress);
    int32_t b = SingleRoundedShare(h, f_.progress);
    if (f_.close) {
      a = w - a;
      b = h - b;
    }
    const Interval barRows = Bar(c.y0, h, b), barColumns = Bar(c.x0, w, a);
    const Interval innerRows = Shrunk(barRows, f_.penThickness), innerColumns = Shrunk(barColumns, f_.penThickness);
    for (int32_t y = c.y0; y < c.y1; ++y) {
      if (innerRows.Has(y)) {
        f_.PaintRun(Source::Inside, y, c.x0, c.x1);
        continue;
      }
      const bool penRow = barRows.Has(y);
      int32_t cuts[] = {barColumns.begin, barColumns.end, innerColumns.begin, innerColumns.end};
      ForEachRun(
          c.x0, c.x1, cuts,
          [&](int32_t x) {
            if (innerColumns.Has(x)) return Source::Inside;
            return penRow || barColumns.Has(x) ? Source::Pen : Source::Outside;
          },
          [&](Source s, int32_t begin, int32_t end) { f_.PaintRun(s, y, begin, end); });
    }
  }

 private:
  const IrisFrame& f_;
};

int32_t IrisCrossRender(t_KrRenderInfo* ri) { return RenderIris<CrossShape>(ri, fields, PenWidening::ByTwo); }

}  // namespace
}  // namespace krl

KR_TRANSITION(IrisCross, kTexts, kFields)
KR_TEST_PROFILE("Iris Cross", .heavier = {"Divide_X=4", "Divide_Y=3", "BorderWidth=4", "Color=#FF2000"})

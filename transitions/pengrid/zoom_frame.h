// What Center Zoom and Corner Zoom share: the "ZoomType" selector, the one
// pen (its texts in the singular), and the frame they both draw: a rectangle
// showing one clip shrunk by nearest sampling, a pen box around it, the
// other clip in place everywhere else.
#pragma once

#include <algorithm>
#include <cstdint>

#include "host/declare.h"
#include "host/host_calls.h"
#include "raster/pixel_rows.h"
#include "raster/resample.h"

namespace krl {

constexpr FieldSpec ZoomTypeField(FieldIndex* index) {
  return Selector(index, "ZoomType", "Zoom", {{"Zoom In", 0}, {"Zoom Out", 1}})
      .Help("Specifies whether Vb is zoomed in or out.")
      .Default(0);
}

constexpr FieldSpec ZoomPenColorField(FieldIndex* index, const char* key) {
  return Color(index, key, "Pen Color").Help("Defines the color of the pen.").DefaultColor(0, 0, 0);
}

constexpr FieldSpec ZoomPenThicknessField(FieldIndex* index) {
  return Long(index, "BorderWidth", "Pen Thickness (0..10)", 0.0, 10.0)
      .Limits()
      .Help("Specifies the thickness of the pen.")
      .Default(0);
}

// The fields Center Zoom and Corner Zoom share, in declaration order.
struct ZoomFields {
  ClipFields clip;
  FieldIndex zoomType, color, borderWidth;
};

// The clip fields, "ZoomType", the pen colour under `colorKey`, the pen
// thickness, then the transition's own.
template <typename... Own>
constexpr auto ZoomFieldTable(ZoomFields& f, const char* colorKey, const Own&... own) {
  return FieldTable(f.clip, ZoomTypeField(&f.zoomType), ZoomPenColorField(&f.color, colorKey),
                    ZoomPenThicknessField(&f.borderWidth), own...);
}

// "ZoomType", the pen (at Progress, always opaque) and BorderWidth, read in
// this order and as the host gives them.
struct ZoomReads {
  bool zoomOut;  // any value but 0
  uint32_t pen;
  int32_t borderWidth;
};

inline ZoomReads ReadZoom(const HostCalls& host, const ZoomFields& f) {
  ZoomReads r{};
  r.zoomOut = host.Field(f.zoomType) != 0;
  r.pen = host.PenColor(f.color);
  r.borderWidth = host.Field(f.borderWidth);
  return r;
}

// Columns or rows [begin, end), in 64 bits so that any pen thickness may
// push the ends beyond the frame.
struct Span64 {
  int64_t begin, end;
};

// The zoomed picture's rectangle, the pen box around it, and the picture
// pixel that the rectangle's corner (anchorX, anchorY) offsets are sampled
// from.
struct ZoomLayout {
  Span64 penColumns, penRows;
  Span64 pictureColumns, pictureRows;
  int32_t anchorX, anchorY;
};

namespace zoom_detail {

struct Span {
  int32_t begin, end;
  bool Contains(int32_t i) const { return i >= begin && i < end; }
};

// `s` held to [low, high]; an empty or reversed span stays empty.
inline Span Within(Span64 s, int32_t low, int32_t high) {
  const int32_t begin = static_cast<int32_t>(std::clamp<int64_t>(s.begin, low, high));
  return {begin, static_cast<int32_t>(std::clamp<int64_t>(s.end, begin, high))};
}

}  // namespace zoom_detail

// Writes every output pixel: in the picture rectangle (as far as it lies in
// the pen box) the picture at (sample(x - anchorX), sample(y - anchorY)), in
// the rest of the pen box the pen, elsewhere the background in place. Both
// boxes are held to the frame. Zooming in, the picture is B over A; zooming
// out, A over B.
template <typename Sample>
void PaintZoom(const FrameRows& rows, const ZoomReads& reads, const ZoomLayout& layout, Sample sample) {
  using zoom_detail::Within;
  const PixelWord* background = reads.zoomOut ? rows.inputB : rows.inputA;
  const PixelWord* picture = reads.zoomOut ? rows.inputA : rows.inputB;
  const uint32_t pen = reads.pen;
  const int32_t w = rows.width, h = rows.height;
  const zoom_detail::Span penX = Within(layout.penColumns, 0, w), penY = Within(layout.penRows, 0, h);
  const zoom_detail::Span picX = Within(layout.pictureColumns, penX.begin, penX.end);
  const zoom_detail::Span picY = Within(layout.pictureRows, penY.begin, penY.end);
  for (int32_t y = 0; y < h; ++y) {
    PixelWord* out = rows.Out(y);
    const PixelWord* in = background + rows.RowStart(y);
    if (!penY.Contains(y)) {
      CopyRun(out, in, w);
      continue;
    }
    CopyRun(out, in, penX.begin);
    if (picY.Contains(y)) {
      FillRun(out + penX.begin, pen, picX.begin - penX.begin);
      FillRun(out + picX.end, pen, penX.end - picX.end);
    } else {
      FillRun(out + penX.begin, pen, penX.end - penX.begin);
    }
    CopyRun(out + penX.end, in + penX.end, w - penX.end);
  }
  PaintSampled(rows.output, w, {picture, w, h}, picX.begin, picX.end, picY.begin, picY.end,
               [&](int32_t x) { return sample(x - layout.anchorX); },
               [&](int32_t y) { return sample(y - layout.anchorY); });
}

}  // namespace krl

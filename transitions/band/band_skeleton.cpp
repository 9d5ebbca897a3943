#include "transitions/band/band_skeleton.h"

#include <algorithm>

#include "host/render_prologue.h"
#include "raster/numeric.h"
#include "raster/pixel_rows.h"

namespace krl {
namespace {

// The bands across one side of the frame: band k of n starts at trunc(k q),
// q = side / n kept in extended precision, and ends where band k + 1 starts;
// the last one ends at the side exactly.
class BandBounds {
 public:
  BandBounds(int32_t side, int32_t count)
      : side_(side), count_(count), q_(static_cast<long double>(side) / count) {}

  int32_t Start(int64_t k) const {
    return k >= count_ ? side_ : TruncToInt32(static_cast<long double>(k) * q_);
  }

  // The band holding line y (0 <= y < side), the last to start at or before
  // it: found by division (band k ends past y once (k + 1) q >= y + 1), then
  // put right against the bounds themselves, so it agrees with Start exactly.
  int64_t BandAt(int32_t y) const {
    int64_t k = std::min<int64_t>(count_ - 1, static_cast<int64_t>((y + 1.0L) / q_));
    while (k > 0 && Start(k) > y) --k;
    while (k + 1 < count_ && Start(k + 1) <= y) ++k;
    return k;
  }

  // Calls paint(k, begin, end) for every band that holds a line, bottom up.
  // Empty bands are never visited, so a count far beyond the side costs
  // nothing; the bands visited keep their own index k.
  template <typename Paint>
  void ForEachNonEmpty(Paint paint) const {
    for (int32_t y = 0; y < side_;) {
      const int64_t k = BandAt(y);
      const int32_t end = Start(k + 1);
      paint(k, y, end);
      y = end;
    }
  }

 private:
  int32_t side_;
  int64_t count_;
  long double q_;
};

// What one band's line shows along the travel: the first source on
// [0, cut), the second on [cut, extent), each read at its own shift.
struct BandLine {
  int32_t cut;
  bool bFirst;
  int32_t firstShift, secondShift;
};

BandLine LineOf(const BandTravel& t, BandCopyRule rule) {
  const BandReads r = rule(t);
  if (t.entersAtLowEnd) return {t.shift, true, r.bShift, r.aShift};
  return {t.extent - t.shift, false, r.aShift, r.bShift};
}

const PixelWord* Source(const FrameRows& rows, bool b, int32_t y) { return b ? rows.B(y) : rows.A(y); }

// Horizontal bands: rows begin..end - 1, each cut along its columns.
void PaintRows(const FrameRows& rows, const BandLine& l, int32_t begin, int32_t end) {
  for (int32_t y = begin; y < end; ++y) {
    PixelWord* out = rows.Out(y);
    CopyRun(out, Source(rows, l.bFirst, y) + l.firstShift, l.cut);
    CopyRun(out + l.cut, Source(rows, !l.bFirst, y) + l.cut + l.secondShift, rows.width - l.cut);
  }
}

// Vertical bands, gathered a batch at a time and painted row by row: within
// a row every band of one parity reads the same source row, and the frame is
// walked once per batch rather than once per band.
class ColumnBands {
 public:
  ColumnBands(const FrameRows& rows, const BandLine (&lines)[2]) : rows_(rows), lines_(lines) {}

  void Add(int64_t k, int32_t begin, int32_t end) {
    if (count_ == kBatch) Flush();
    bands_[count_++] = {begin, end, static_cast<uint8_t>(k & 1)};
  }

  void Flush() {
    for (int32_t y = 0; y < rows_.height; ++y) {
      const PixelWord* from[2] = {SourceRow(lines_[0], y), SourceRow(lines_[1], y)};
      PixelWord* out = rows_.Out(y);
      for (int i = 0; i < count_; ++i) {
        const Band& b = bands_[i];
        CopyRun(out + b.begin, from[b.parity] + b.begin, b.end - b.begin);
      }
    }
    count_ = 0;
  }

 private:
  static constexpr int kBatch = 64;
  struct Band {
    int32_t begin, end;
    uint8_t parity;
  };

  const PixelWord* SourceRow(const BandLine& l, int32_t y) const {
    const bool first = y < l.cut;
    return Source(rows_, first == l.bFirst, y + (first ? l.firstShift : l.secondShift));
  }

  const FrameRows& rows_;
  const BandLine (&lines_)[2];
  Band bands_[kBatch];
  int count_ = 0;
};

}  // namespace

int32_t RenderBands(t_KrRenderInfo* ri, const BandFields& fields, BandCopyRule rule) {
  if (!BeginRender(ri, fields.transType)) return 0;
  const HostCalls host(ri);
  const bool vertical = host.Field(fields.direction) == 1;
  const int32_t count = host.Field(fields.bandCount);
  if (ri->Width <= 0 || ri->Height <= 0 || count < 1) return 1;

  const FrameRows rows = FrameRows::Of(ri);
  const int32_t extent = vertical ? rows.height : rows.width;
  // The integer extent times Progress in extended precision, truncated; a
  // Progress outside 0..1 (or NaN) would read past the band's ends, so the
  // shift is held to 0..extent.
  const int32_t shift = TruncToRange(static_cast<long double>(extent) * ri->Progress, int32_t{0}, extent);
  // Even horizontal bands take B in at the right, even vertical ones at row 0.
  const BandLine lines[2] = {LineOf({vertical, extent, shift}, rule), LineOf({!vertical, extent, shift}, rule)};

  const BandBounds bounds(vertical ? rows.width : rows.height, count);
  if (vertical) {
    ColumnBands bands(rows, lines);
    bounds.ForEachNonEmpty([&](int64_t k, int32_t begin, int32_t end) { bands.Add(k, begin, end); });
    bands.Flush();
  } else {
    bounds.ForEachNonEmpty(
        [&](int64_t k, int32_t begin, int32_t end) { PaintRows(rows, lines[k & 1], begin, end); });
  }
  return 1;
}

}  // namespace krl

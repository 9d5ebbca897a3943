// How a pixel near a straight edge is coloured: colour P on the side where
// the signed distance r (in output pixels, at the pixel centre) is negative,
// a pen M on 0 <= r < t, colour Q beyond. With anti-aliasing the sides share
// a pixel by their coverage of a band one pixel wide centred on each border,
// so an edge on a pixel border leaves both neighbours unblended.
#pragma once

#include <cstdint>

#include "raster/pixel_mix.h"

namespace krl {

inline uint32_t Band(uint32_t p, uint32_t m, uint32_t q, double r, double t, bool antiAlias) {
  if (!antiAlias) return r < 0 ? p : (r < t ? m : q);
  const int32_t wP = MixWeight(0.5 - r);
  if (t == 0) return MixWeighted(q, p, wP);
  const int32_t coverQ = MixWeight(r - t + 0.5);
  const int32_t wQ = coverQ < 256 - wP ? coverQ : 256 - wP;
  const int32_t wM = 256 - wP - wQ;
  uint32_t out = 0;
  for (int shift = 0; shift < 32; shift += 8) {
    const int32_t v = (static_cast<int32_t>((p >> shift) & 0xFFu) * wP +
                       static_cast<int32_t>((m >> shift) & 0xFFu) * wM +
                       static_cast<int32_t>((q >> shift) & 0xFFu) * wQ + 128) >> 8;
    out |= static_cast<uint32_t>(v) << shift;
  }
  return out;
}

// The edge between P and Q with no pen.
inline uint32_t Edge(uint32_t p, uint32_t q, double r, bool antiAlias) {
  if (!antiAlias) return r < 0 ? p : q;
  return MixWeighted(q, p, MixWeight(0.5 - r));
}

}  // namespace krl

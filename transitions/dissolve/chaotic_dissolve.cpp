// Chaotic Dissolve: every source pixel, faded from A towards B, is thrown
// towards the centre of the frame plus a random offset, over a background
// colour. The throw is strongest half way and vanishes at both ends. The
// offsets come from a generator restarted at the same value every frame, so
// the cloud of pixels moves smoothly instead of flickering.
#include <cstring>

#include "host/transition.h"
#include "host/render_prologue.h"
#include "raster/frame.h"
#include "raster/numeric.h"

namespace krl {
namespace {

constexpr EffectTexts kTexts{.menuPath = "Transitions/Dissolve/Chaotic Dissolve", .signature = "Chaotic Dissolve (ZE plug-in SDK effect)",
                             .displayName = "Chaotic Dissolve", .description = "Va blows up to chaotic pixels showing Vb."};

ClipFields clip;
FieldIndex color;

constexpr auto kFields = FieldTable(clip,
    Color(&color, "Color", "Background Color").Help("Defines the background color.").DefaultColor(155, 155, 155));

// A linear congruential generator whose draws in [0, 1) are formed from the
// low 23 bits of the state as the mantissa of a float in [1, 2), minus 1.
class ChaosGenerator {
 public:
  double Next() {
    state_ = state_ * 1664525u + 1013904223u;
    const uint32_t bits = (state_ & 0x7FFFFFu) | 0x3F800000u;
    float f;
    std::memcpy(&f, &bits, sizeof f);
    return f - 1.0;
  }

 private:
  uint32_t state_ = 1977;
};

// The fade of one byte, a + (b - a) * p truncated. The low 8 bits of the
// truncated value are stored when a Progress outside 0..1 leaves 0..255.
class ByteFade {
 public:
  explicit ByteFade(float p) : p_(p) {}
  void MixPixel(const uint8_t* a, const uint8_t* b, uint8_t* out) const {
    for (int i = 0; i < 4; ++i) out[i] = static_cast<uint8_t>(TruncToInt32(a[i] + (b[i] - a[i]) * p_));
  }

 private:
  double p_;
};

int32_t ChaoticDissolveRender(t_KrRenderInfo* ri) {
  if (!BeginRender(ri, clip.transType)) return 0;
  const size_t pixels = FramePixelCount(ri);
  if (pixels == 0) return 1;
  FillPixels(ri->Output, pixels, HostCalls(ri).PenColor(color));

  const float p = RoundToSingle(ri->Progress);
  const double spread = 4.0 * p * p * (1.0 - p) * (1.0 - p);
  const int32_t width = ri->Width, height = ri->Height;
  const int32_t halfWidth = width / 2, halfHeight = height / 2;
  const double w = RoundToSingle(width), h = RoundToSingle(height);
  const ByteFade fade(p);
  ChaosGenerator random;
  // Later pixels overwrite earlier ones, so the order is part of the result:
  // rows from the top down, each from its last pixel to its first.
  for (int32_t y = height - 1; y >= 0; --y) {
    const double towardsCentreY = halfHeight - y;
    for (int32_t x = width - 1; x >= 0; --x) {
      const double u1 = random.Next(), u2 = random.Next(), u3 = random.Next(), u4 = random.Next();
      const double dy = (u1 * u1 - u2 * u2) * h;
      const double dx = (u3 * u3 - u4 * u4) * w;
      // The row offset enters with a plus sign, the column offset with a
      // minus sign: the asymmetry is part of the look.
      const int32_t ty = TruncToInt32(y - (dy - towardsCentreY) * spread);
      const int32_t tx = TruncToInt32(x - ((x - halfWidth) - dx) * spread);
      if (tx < 0 || tx >= width || ty < 0 || ty >= height) continue;
      const size_t from = static_cast<size_t>(y) * width + x;
      const size_t to = static_cast<size_t>(ty) * width + tx;
      fade.MixPixel(ri->InputA + 4 * from, ri->InputB + 4 * from, ri->Output + 4 * to);
    }
  }
  return 1;
}

}  // namespace
}  // namespace krl

KR_TRANSITION(ChaoticDissolve, kTexts, kFields)
KR_TEST_PROFILE("Chaotic Dissolve", .heavier = {"Color=#FF2000"})

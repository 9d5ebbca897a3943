// The first and last frames of Pin Wheel, Spiral and Flying Carpet, and
// Progress outside 0..1.
#include <gtest/gtest.h>

#include <limits>

#include "transitions/band/sliding_support.h"

namespace krl::test {
namespace {

TEST(TurningTransitions, EndsShowAOrBWhole) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const struct {
    double progress;
    uint8_t shows;
  } ends[] = {{0.0, kTagA}, {-3.0, kTagA}, {nan, kTagA}, {1.0, kTagB}, {7.5, kTagB}};
  for (const char* effect : {"Pin Wheel", "Spiral", "Flying Carpet"}) {
    for (const auto& end : ends) {
      for (const bool aa : {false, true}) {
        const emu::Frame out = RenderCodedClips(effect, 31, 20, end.progress, {{"Anti-Aliasing", aa}});
        EXPECT_EQ(out.pixels, Coded(31, 20, end.shows).pixels) << effect << " at " << end.progress;
      }
    }
  }
}

}  // namespace
}  // namespace krl::test

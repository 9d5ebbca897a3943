// Prints the digest of the frame of every case below, one line a case. Both
// builds run it and must print the same lines: the library renders
// bit-identical frames on i386 and x86-64.
#include <cmath>
#include <cstdlib>
#include <cstdio>
#include <limits>
#include <string>

#include "emulator/digest.h"
#include "emulator/host.h"
#include "emulator/instance.h"
#include "emulator/sample_clips.h"

int main(int argc, char** argv) {
  using namespace krl::emu;
  const std::string path = argc > 1 ? argv[1] : KRL_LIBRARY_PATH;
  std::string error;
  const auto host = Host::Load(path, &error);
  if (!host) {
    std::fprintf(stderr, "%s\n", error.c_str());
    return 1;
  }
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const struct {
    int32_t w, h;
  } sizes[] = {{1, 1}, {7, 3}, {64, 48}, {97, 61}, {1, 40}, {40, 1}};
  const double progresses[] = {0.0, 0.1, 0.25, 0.5, 0.75, 0.999, 1.0, -0.5, 1.5, nan};
  for (const DeclaredEffect& effect : host->effects()) {
    for (const auto& size : sizes) {
      const Frame a = SampleClipA(size.w, size.h, 3), b = SampleClipB(size.w, size.h, 5);
      for (const double progress : progresses) {
        for (const int32_t transType : {0, 1}) {
          Instance instance(*host, effect);
          instance.SetValue("TransType", transType);
          Frame out(size.w, size.h, 0xDEADBEEF);
          std::srand(1);  // the same rand() sequence in both builds
          const int32_t result = instance.Render(a, b, out, progress);
          std::printf("%s %dx%d p=%g type=%d -> %d %s\n", effect.DisplayName().c_str(), size.w, size.h, progress,
                      transType, result, DigestText(out).c_str());
        }
      }
    }
  }
  return 0;
}

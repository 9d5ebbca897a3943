// krl render: one frame of a transition at a chosen Progress, as a PNG.
#include <cstdio>
#include <cstdlib>

#include "cli/commands.h"
#include "cli/fields.h"
#include "cli/image_io.h"
#include "cli/inputs.h"
#include "cli/library.h"
#include "emulator/sample_clips.h"

namespace krl::cli {

int Render(const Options& options) {
  if (options.positional.size() != 1) throw UsageError("krl render takes one transition name");
  if (options.output.empty()) throw UsageError("krl render needs -o OUT.png");
  if (options.progress.empty()) throw UsageError("krl render needs --progress P");
  char* end = nullptr;
  const double progress = std::strtod(options.progress.c_str(), &end);
  if (*end != '\0') throw UsageError("--progress takes a number, not \"" + options.progress + "\"");

  const auto host = LoadLibrary(options.library);
  emu::Instance instance(*host, FindEffect(*host, options.positional[0]));
  ApplyFieldOptions(instance, options.settings, options.curves);
  InputClip a(options.a, emu::SampleClipA, 25.0), b(options.b, emu::SampleClipB, 25.0);
  const Size size = FitInputs(options.size, a, b, {640, 360});
  emu::Frame out(size.width, size.height);
  RenderFrame(instance, a.Next(), b.Next(), out, progress);
  WritePng(out, options.output);
  if (!options.quiet) {
    std::printf("wrote %s (%dx%d, %s at Progress %g)\n", options.output.c_str(), size.width, size.height,
                instance.effect().DisplayName().c_str(), progress);
  }
  return 0;
}

}  // namespace krl::cli

// krl clip: a transition over N frames, Progress rising from 0 to 1, as a
// PNG sequence, Y4M or anything ffmpeg writes.
#include <cstdio>

#include "cli/commands.h"
#include "cli/fields.h"
#include "cli/inputs.h"
#include "cli/library.h"
#include "cli/outputs.h"
#include "cli/progress.h"
#include "cli/staging.h"
#include "emulator/sample_clips.h"

namespace krl::cli {

int Clip(const Options& options) {
  AcceptOnly(options, {"--a", "--b", "--output", "--size", "--frames", "--fps", "--set", "--curve", "--quiet"}, 1);
  if (options.positional.size() != 1) throw UsageError("krl clip takes one transition name");
  if (options.output.empty()) throw UsageError("krl clip needs -o OUT (frames/%04d.png, out.y4m, out.mp4, ...)");
  if (options.frames.empty()) throw UsageError("krl clip needs --frames N");
  const int32_t frames = ParseCount("--frames", options.frames, 2, 100000);
  const double fps = options.fps.empty() ? 25.0 : ParsePositive("--fps", options.fps, 1000.0);

  const auto host = LoadLibrary(options.library);
  emu::Instance instance(*host, FindEffect(*host, options.positional[0]));
  ApplyFieldOptions(instance, options.settings, options.curves);
  InputClip a(options.a, emu::SampleClipA, fps), b(options.b, emu::SampleClipB, fps);
  const Size size = FitInputs(options.size, a, b, {640, 360});
  const auto sink = OpenOutput(options.output, size, fps, options.quiet);

  emu::Frame out(size.width, size.height);
  {
    ProgressBar bar(instance.effect().DisplayName(), frames, options.quiet || sink->ToStandardOutput());
    for (int32_t i = 0; i < frames; ++i) {
      ThrowIfInterrupted();
      RenderFrame(instance, a.Next(), b.Next(), out, ProgressOf(i, frames));
      sink->Write(out);
      bar.Update(i + 1);
    }
  }
  sink->Finish();
  if (!options.quiet) {
    const Size written = sink->WrittenSize();
    std::fprintf(sink->ToStandardOutput() ? stderr : stdout, "wrote %s: %d frames of %s at %dx%d, %g fps\n",
                 sink->Describe().c_str(), frames, instance.effect().DisplayName().c_str(), written.width,
                 written.height, fps);
  }
  if (const std::string replaced = sink->Replaced(); !replaced.empty()) std::fprintf(stderr, "krl: %s\n", replaced.c_str());
  return 0;
}

}  // namespace krl::cli

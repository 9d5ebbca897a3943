// krl render: one frame of a transition at a chosen Progress, as a picture
// in the format its name says (PNG, JPEG, BMP, TGA; "-": PNG on stdout).
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include "cli/commands.h"
#include "cli/fields.h"
#include "cli/image_io.h"
#include "cli/inputs.h"
#include "cli/library.h"
#include "emulator/sample_clips.h"

namespace krl::cli {

int Render(const Options& options) {
  AcceptOnly(options, {"--a", "--b", "--output", "--size", "--progress", "--set", "--curve", "--quiet"}, 1);
  if (options.positional.size() != 1) throw UsageError("krl render takes one transition name");
  if (options.output.empty()) throw UsageError("krl render needs -o OUT.png");
  if (options.progress.empty()) throw UsageError("krl render needs --progress P");
  std::error_code ec;
  if (options.output.back() == '/' || std::filesystem::is_directory(options.output, ec)) {
    throw std::runtime_error("cannot write " + options.output + ": it is a folder; name a file in it, like " +
                             (std::filesystem::path(options.output) / "out.png").lexically_normal().string());
  }
  if (ImageFormatOf(options.output).empty()) {
    throw UsageError("krl render writes a frame as .png, .jpg, .bmp or .tga, or as PNG to standard output (-o -), "
                     "not \"" + options.output + "\"");
  }
  const double progress = ParseProgress(options.progress);

  const auto host = LoadLibrary(options.library);
  emu::Instance instance(*host, FindEffect(*host, options.positional[0]));
  ApplyFieldOptions(instance, options.settings, options.curves);
  InputClip a(options.a, emu::SampleClipA, 25.0), b(options.b, emu::SampleClipB, 25.0);
  const Size size = FitInputs(options.size, a, b, {640, 360});
  emu::Frame out(size.width, size.height);
  RenderFrame(instance, a.Next(), b.Next(), out, progress);
  WriteImage(out, options.output);
  if (!options.quiet && options.output != "-") {
    std::printf("wrote %s (%s, %dx%d, %s at Progress %g)\n", options.output.c_str(),
                ImageFormatOf(options.output).c_str(), size.width, size.height,
                instance.effect().DisplayName().c_str(), progress);
  }
  return 0;
}

}  // namespace krl::cli

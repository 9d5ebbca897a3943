// krl: the previewer. Loads the transitions library through the host
// emulator, lists what it declares and renders frames, clips and a gallery
// of any transition.
#include <csignal>
#include <cstdio>
#include <new>
#include <string>

#include "cli/commands.h"
#include "cli/options.h"
#include "cli/inputs.h"
#include "cli/staging.h"

namespace krl::cli {
namespace {

int Run(int argc, char** argv) {
  const Options options = ParseOptions(argc, argv);
  if (options.command.empty() || options.command == "help") {
    std::fputs(kUsage, options.command.empty() ? stderr : stdout);
    return options.command.empty() ? 2 : 0;
  }
  if (options.command == "version") return Version(options);
  if (options.command == "list") return List(options);
  if (options.command == "info") return Info(options);
  if (options.command == "render") return Render(options);
  if (options.command == "clip") return Clip(options);
  if (options.command == "gallery") return Gallery(options);
  throw UsageError("unknown command \"" + options.command + "\"; the commands are list, info, render, clip, gallery");
}

int ReportInterrupted() {
  const int signal = InterruptSignal() != 0 ? InterruptSignal() : SIGINT;
  std::fflush(stdout);
  std::fprintf(stderr, "\nkrl: interrupted; nothing was written\n");
  return 128 + signal;
}

}  // namespace
}  // namespace krl::cli

int main(int argc, char** argv) {
  using namespace krl::cli;
  InstallInterruptHandlers();
  try {
    return Run(argc, argv);
  } catch (const UsageError& e) {
    std::fprintf(stderr, "krl: %s (krl --help shows the commands and options)\n", e.what());
    return 2;
  } catch (const Interrupted&) {
    return ReportInterrupted();
  } catch (const std::bad_alloc&) {
    if (InterruptSignal() != 0) return ReportInterrupted();
    std::fflush(stdout);
    std::fprintf(stderr, "krl: not enough memory for frames of this size%s; name a smaller --size\n",
                 FrameSizeText().c_str());
    return 1;
  } catch (const std::exception& e) {
    // Whichever noticed an interruption first, krl or a helper it ran, it is one.
    if (InterruptSignal() != 0) return ReportInterrupted();
    std::fflush(stdout);
    std::fprintf(stderr, "krl: %s\n", e.what());
    return 1;
  }
}

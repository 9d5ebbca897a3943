// krl: the previewer. Loads the transitions library through the host
// emulator, lists what it declares and renders frames, clips and a gallery
// of any transition.
#include <cstdio>
#include <string>

#include "cli/commands.h"
#include "cli/options.h"
#include "cli/staging.h"

namespace krl::cli {
namespace {

int Run(int argc, char** argv) {
  const Options options = ParseOptions(argc, argv);
  if (options.command.empty() || options.command == "help") {
    std::fputs(kUsage, options.command.empty() ? stderr : stdout);
    return options.command.empty() ? 2 : 0;
  }
  if (options.command == "list") return List(options);
  if (options.command == "info") return Info(options);
  if (options.command == "render") return Render(options);
  if (options.command == "clip") return Clip(options);
  if (options.command == "gallery") return Gallery(options);
  throw UsageError("unknown command \"" + options.command + "\"");
}

}  // namespace
}  // namespace krl::cli

int main(int argc, char** argv) {
  krl::cli::InstallInterruptHandlers();
  try {
    return krl::cli::Run(argc, argv);
  } catch (const krl::cli::UsageError& e) {
    std::fprintf(stderr, "krl: %s\n%s", e.what(), krl::cli::kUsage);
    return 2;
  } catch (const krl::cli::Interrupted&) {
    std::fprintf(stderr, "\nkrl: interrupted; nothing was written\n");
    return 130;
  } catch (const std::exception& e) {
    std::fflush(stdout);
    std::fprintf(stderr, "krl: %s\n", e.what());
    return 1;
  }
}

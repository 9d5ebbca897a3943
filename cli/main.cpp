// krl: the previewer. Loads the transitions library through the host
// emulator, lists what it declares and renders frames of any transition.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "cli/fields.h"
#include "cli/image_io.h"
#include "emulator/host.h"
#include "emulator/instance.h"
#include "emulator/sample_clips.h"

namespace krl::cli {
namespace {

constexpr const char* kLibraryName = "libkrl.bxtransitions.so.1";
constexpr int32_t kDefaultWidth = 640;
constexpr int32_t kDefaultHeight = 360;

const char* const kUsage =
    "usage: krl [--library PATH] COMMAND ...\n"
    "  krl list                      every transition with its menu path and fields\n"
    "  krl info NAME                 one transition's fields, ranges, items and defaults\n"
    "  krl render NAME --progress P -o OUT.png [--a A.png] [--b B.png]\n"
    "             [--set KEY=VALUE ...] [--size WxH]\n"
    "Without --a/--b the built-in sample clips are used. NAME is the transition's\n"
    "name (\"Traditional Fade\") or menu path. The library is found beside krl,\n"
    "or through --library or the KRL_LIBRARY environment variable.\n";

struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct Arguments {
  std::string library;
  std::string command;
  std::vector<std::string> positional;
  std::string a, b, output, size, progress;
  std::vector<std::string> settings;
};

Arguments Parse(int argc, char** argv) {
  Arguments args;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    auto value = [&]() -> std::string {
      if (i + 1 >= argc) throw UsageError(arg + " needs a value");
      return argv[++i];
    };
    if (arg == "--library") args.library = value();
    else if (arg == "--a") args.a = value();
    else if (arg == "--b") args.b = value();
    else if (arg == "-o" || arg == "--output") args.output = value();
    else if (arg == "--size") args.size = value();
    else if (arg == "--progress") args.progress = value();
    else if (arg == "--set") args.settings.push_back(value());
    else if (arg == "-h" || arg == "--help") args.command = "help";
    else if (arg.size() > 1 && arg[0] == '-' && !(arg[1] >= '0' && arg[1] <= '9')) throw UsageError("unknown option " + arg);
    else if (args.command.empty()) args.command = arg;
    else args.positional.push_back(arg);
  }
  return args;
}

std::string LibraryPath(const Arguments& args) {
  if (!args.library.empty()) return args.library;
  if (const char* env = std::getenv("KRL_LIBRARY"); env != nullptr && *env != '\0') return env;
  char exe[4096];
  const ssize_t n = readlink("/proc/self/exe", exe, sizeof exe - 1);
  if (n <= 0) return kLibraryName;
  std::string dir(exe, static_cast<size_t>(n));
  return dir.substr(0, dir.rfind('/') + 1) + kLibraryName;
}

std::unique_ptr<emu::Host> LoadHost(const Arguments& args) {
  std::string error;
  auto host = emu::Host::Load(LibraryPath(args), &error);
  if (!host) throw std::runtime_error(error);
  return host;
}

const emu::DeclaredEffect& FindEffect(const emu::Host& host, const std::string& name) {
  if (const emu::DeclaredEffect* e = host.FindEffect(name)) return *e;
  std::string known;
  for (const emu::DeclaredEffect& e : host.effects()) known += (known.empty() ? "" : ", ") + e.DisplayName();
  throw std::runtime_error("no transition is called \"" + name + "\"; there are: " + known);
}

void PrintEffect(const emu::Host& host, const emu::DeclaredEffect& e) {
  const emu::Instance instance(host, e);
  std::printf("%s  (%s)\n  %s\n", e.DisplayName().c_str(), e.name.c_str(), e.description.c_str());
  for (const emu::DeclaredField& f : e.fields) {
    for (const std::string& line : DescribeField(instance, f)) std::printf("  %s\n", line.c_str());
  }
}

int List(const Arguments& args) {
  const auto host = LoadHost(args);
  std::printf("%zu transitions in %s\n\n", host->effects().size(), host->path().c_str());
  for (const emu::DeclaredEffect& e : host->effects()) {
    PrintEffect(*host, e);
    std::printf("\n");
  }
  return 0;
}

int Info(const Arguments& args) {
  if (args.positional.size() != 1) throw UsageError("krl info takes one transition name");
  const auto host = LoadHost(args);
  PrintEffect(*host, FindEffect(*host, args.positional[0]));
  return 0;
}

void ParseSize(const std::string& text, int32_t* w, int32_t* h) {
  int width = 0, height = 0;
  char tail = 0;
  if (std::sscanf(text.c_str(), "%dx%d%c", &width, &height, &tail) != 2 || width < 1 || height < 1 ||
      width > 16384 || height > 16384) {
    throw UsageError("--size takes WIDTHxHEIGHT (1 to 16384 each), not \"" + text + "\"");
  }
  *w = width;
  *h = height;
}

// An input at the frame size: read from a file (scaled when it differs, and
// the user is told) or drawn from a built-in clip.
emu::Frame Input(const std::string& path, emu::Frame (*sample)(int32_t, int32_t, int32_t), int32_t w, int32_t h) {
  if (path.empty()) return sample(w, h, 0);
  emu::Frame frame = ReadImage(path);
  if (frame.width == w && frame.height == h) return frame;
  std::fprintf(stderr, "krl: scaled %s from %dx%d to %dx%d\n", path.c_str(), frame.width, frame.height, w, h);
  return Scale(frame, w, h);
}

int Render(const Arguments& args) {
  if (args.positional.size() != 1) throw UsageError("krl render takes one transition name");
  if (args.output.empty()) throw UsageError("krl render needs -o OUT.png");
  if (args.progress.empty()) throw UsageError("krl render needs --progress P");
  char* end = nullptr;
  const double progress = std::strtod(args.progress.c_str(), &end);
  if (*end != '\0') throw UsageError("--progress takes a number, not \"" + args.progress + "\"");

  const auto host = LoadHost(args);
  emu::Instance instance(*host, FindEffect(*host, args.positional[0]));
  for (const std::string& setting : args.settings) ApplySetting(instance, setting);

  int32_t w = kDefaultWidth, h = kDefaultHeight;
  if (!args.size.empty()) {
    ParseSize(args.size, &w, &h);
  } else if (!args.a.empty() || !args.b.empty()) {
    const emu::Frame first = ReadImage(!args.a.empty() ? args.a : args.b);
    w = first.width;
    h = first.height;
  }
  const emu::Frame a = Input(args.a, emu::SampleClipA, w, h);
  const emu::Frame b = Input(args.b, emu::SampleClipB, w, h);
  emu::Frame out(w, h);
  if (instance.Render(a, b, out, progress) != 1) {
    std::string why = instance.reportedErrors().empty() ? "no reason given" : instance.reportedErrors().back();
    throw std::runtime_error(instance.effect().DisplayName() + " refused the frame: " + why);
  }
  WritePng(out, args.output);
  std::printf("wrote %s (%dx%d, %s at Progress %g)\n", args.output.c_str(), w, h,
              instance.effect().DisplayName().c_str(), progress);
  return 0;
}

int Run(int argc, char** argv) {
  const Arguments args = Parse(argc, argv);
  if (args.command.empty() || args.command == "help") {
    std::fputs(kUsage, args.command.empty() ? stderr : stdout);
    return args.command.empty() ? 2 : 0;
  }
  if (args.command == "list") return List(args);
  if (args.command == "info") return Info(args);
  if (args.command == "render") return Render(args);
  throw UsageError("unknown command \"" + args.command + "\"");
}

}  // namespace
}  // namespace krl::cli

int main(int argc, char** argv) {
  try {
    return krl::cli::Run(argc, argv);
  } catch (const krl::cli::UsageError& e) {
    std::fprintf(stderr, "krl: %s\n%s", e.what(), krl::cli::kUsage);
    return 2;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "krl: %s\n", e.what());
    return 1;
  }
}

#include "cli/options.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <algorithm>
#include <iterator>

namespace krl::cli {

const char* const kUsage =
    "usage: krl [--library PATH] COMMAND ...\n"
    "  krl list                      every transition, by menu path, with its fields\n"
    "  krl info NAME                 one transition's fields, ranges, items and defaults\n"
    "  krl render NAME --progress P -o OUT [--a A] [--b B] [--size WxH]\n"
    "             [--set KEY=VALUE ...] [--curve KEY=POS:VAL,...] [--quiet]\n"
    "             OUT: out.png, out.jpg, out.bmp, out.tga, or - (PNG on standard output)\n"
    "  krl clip NAME --frames N -o OUT [--fps F] [--a A] [--b B] [--size WxH]\n"
    "             [--set KEY=VALUE ...] [--curve KEY=POS:VAL,...] [--quiet]\n"
    "             OUT: frames/%04d.png (PNG sequence), out.y4m, - (Y4M on standard\n"
    "             output), or with the ffmpeg program installed out.mp4, out.webm, out.gif, ...\n"
    "  krl gallery -o DIR [--size WxH] [--frames N] [--fps F] [--a A] [--b B] [--quiet]\n"
    "             every transition as a filmstrip and an animation, and DIR/index.html\n"
    "  krl --version                 krl, the library it loads, its ABI and what it declares\n"
    "Defaults: --size 640x360 (gallery 320x180), --fps 25, gallery --frames 25.\n"
    "A and B are images or video clips; without them the built-in moving sample\n"
    "clips are used. NAME is the transition's name (\"Traditional Fade\") or menu\n"
    "path. Fields are named by key or label; selector items by label or value;\n"
    "colours as #RRGGBB, #RGB or r,g,b; booleans as on/off. The library is found\n"
    "beside krl, or through --library or the KRL_LIBRARY environment variable.\n";

namespace {

// Options that take a value, by their long names; "-o" is "--output".
const char* const kValued[] = {"--library", "--a", "--b", "--output", "--size", "--progress", "--frames", "--fps",
                               "--set", "--curve"};

std::string LongName(const std::string& arg) {
  if (arg == "-o") return "--output";
  if (arg == "-q") return "--quiet";
  if (arg == "-h") return "--help";
  if (arg == "-V") return "--version";
  return arg;
}

// Why a command does not take an option, where that is not plain.
std::string Because(const std::string& command, const std::string& option) {
  if (command == "clip" && option == "--progress") return " (a clip runs Progress from 0 to 1 over --frames)";
  if (command == "render" && (option == "--frames" || option == "--fps")) return " (it renders one frame at --progress)";
  if (command == "gallery" && (option == "--set" || option == "--curve" || option == "--progress")) {
    return " (the gallery shows every transition with its default fields, Progress 0 to 1)";
  }
  if (command == "list" || command == "info") return " (it renders nothing)";
  return "";
}

}  // namespace

Options ParseOptions(int argc, char** argv) {
  Options o;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    const std::string name = LongName(arg);
    const bool valued = std::find(std::begin(kValued), std::end(kValued), name) != std::end(kValued);
    if (valued || name == "--quiet") o.given.push_back(name);
    auto value = [&]() -> std::string {
      if (i + 1 >= argc) throw UsageError(arg + " needs a value");
      return argv[++i];
    };
    if (name == "--library") o.library = value();
    else if (name == "--a") o.a = value();
    else if (name == "--b") o.b = value();
    else if (name == "--output") o.output = value();
    else if (name == "--size") o.size = value();
    else if (name == "--progress") o.progress = value();
    else if (name == "--frames") o.frames = value();
    else if (name == "--fps") o.fps = value();
    else if (name == "--set") o.settings.push_back(value());
    else if (name == "--curve") o.curves.push_back(value());
    else if (name == "--quiet") o.quiet = true;
    else if (name == "--help") o.command = "help";
    else if (name == "--version") o.command = "version";
    else if (arg.size() > 1 && arg[0] == '-' && !(arg[1] >= '0' && arg[1] <= '9') && arg[1] != '.') {
      throw UsageError("unknown option " + arg);
    }
    else if (o.command.empty()) o.command = arg;
    else o.positional.push_back(arg);
  }
  return o;
}

void AcceptOnly(const Options& options, const std::vector<std::string>& taken, size_t maxNames) {
  for (const std::string& option : options.given) {
    if (option == "--library" || std::find(taken.begin(), taken.end(), option) != taken.end()) continue;
    throw UsageError("krl " + options.command + " takes no " + option + Because(options.command, option));
  }
  if (options.positional.size() > maxNames) {
    const std::string extra = options.positional[maxNames];
    throw UsageError(maxNames == 0 ? "krl " + options.command + " takes no name, not \"" + extra + "\""
                                   : "krl " + options.command + " takes one transition name; \"" + extra +
                                         "\" is one too many (quote a name with blanks)");
  }
}

Size ParseSize(const std::string& text) {
  int width = 0, height = 0;
  char tail = 0;
  if (std::sscanf(text.c_str(), "%dx%d%c", &width, &height, &tail) != 2 || width < 1 || height < 1 ||
      width > 16384 || height > 16384) {
    throw UsageError("--size takes WIDTHxHEIGHT (1 to 16384 each), not \"" + text + "\"");
  }
  return {width, height};
}

int32_t ParseCount(const std::string& name, const std::string& text, int32_t low, int32_t high) {
  char* end = nullptr;
  errno = 0;
  const long long v = std::strtoll(text.c_str(), &end, 10);
  if (text.empty() || *end != '\0' || errno != 0 || v < low || v > high) {
    throw UsageError(name + " takes a whole number from " + std::to_string(low) + " to " + std::to_string(high) +
                     ", not \"" + text + "\"");
  }
  return static_cast<int32_t>(v);
}

double ParsePositive(const std::string& name, const std::string& text, double high) {
  char* end = nullptr;
  const double v = std::strtod(text.c_str(), &end);
  if (text.empty() || *end != '\0' || !(v > 0.0) || !(v <= high)) {
    char limit[32];
    std::snprintf(limit, sizeof limit, "%g", high);
    throw UsageError(name + " takes a number above 0 and up to " + limit + ", not \"" + text + "\"");
  }
  return v;
}

double ParseProgress(const std::string& text) {
  char* end = nullptr;
  const double progress = std::strtod(text.c_str(), &end);
  if (text.empty() || *end != '\0') throw UsageError("--progress takes a number, not \"" + text + "\"");
  if (!(progress >= 0.0 && progress <= 1.0)) {
    std::fprintf(stderr,
                 "krl: Progress %g is outside 0..1; the library does not clamp it: the transition computes with it "
                 "as it is\n",
                 progress);
  }
  return progress;
}

}  // namespace krl::cli

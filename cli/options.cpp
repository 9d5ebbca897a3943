#include "cli/options.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace krl::cli {

const char* const kUsage =
    "usage: krl [--library PATH] COMMAND ...\n"
    "  krl list                      every transition with its menu path and fields\n"
    "  krl info NAME                 one transition's fields, ranges, items and defaults\n"
    "  krl render NAME --progress P -o OUT.png [--a A] [--b B] [--size WxH]\n"
    "             [--set KEY=VALUE ...] [--curve KEY=POS:VAL,...]\n"
    "  krl clip NAME --frames N -o OUT [--fps F] [--a A] [--b B] [--size WxH]\n"
    "             [--set KEY=VALUE ...] [--curve KEY=POS:VAL,...] [--quiet]\n"
    "             OUT: frames/%04d.png (PNG sequence), out.y4m, or with the ffmpeg\n"
    "             program installed out.mp4, out.webm, out.gif, ...\n"
    "  krl gallery -o DIR [--size WxH] [--frames N] [--fps F] [--a A] [--b B] [--quiet]\n"
    "             every transition as a filmstrip and an animation, and DIR/index.html\n"
    "A and B are images or video clips; without them the built-in moving sample\n"
    "clips are used. NAME is the transition's name (\"Traditional Fade\") or menu\n"
    "path. Fields are named by key or label; selector items by label or value;\n"
    "colours as #RRGGBB or r,g,b; booleans as on/off. The library is found beside\n"
    "krl, or through --library or the KRL_LIBRARY environment variable.\n";

Options ParseOptions(int argc, char** argv) {
  Options o;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    auto value = [&]() -> std::string {
      if (i + 1 >= argc) throw UsageError(arg + " needs a value");
      return argv[++i];
    };
    if (arg == "--library") o.library = value();
    else if (arg == "--a") o.a = value();
    else if (arg == "--b") o.b = value();
    else if (arg == "-o" || arg == "--output") o.output = value();
    else if (arg == "--size") o.size = value();
    else if (arg == "--progress") o.progress = value();
    else if (arg == "--frames") o.frames = value();
    else if (arg == "--fps") o.fps = value();
    else if (arg == "--set") o.settings.push_back(value());
    else if (arg == "--curve") o.curves.push_back(value());
    else if (arg == "-q" || arg == "--quiet") o.quiet = true;
    else if (arg == "-h" || arg == "--help") o.command = "help";
    else if (arg.size() > 1 && arg[0] == '-' && !(arg[1] >= '0' && arg[1] <= '9')) throw UsageError("unknown option " + arg);
    else if (o.command.empty()) o.command = arg;
    else o.positional.push_back(arg);
  }
  return o;
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

}  // namespace krl::cli

// krl list and krl info: transitions as the host sees them after KrDeclare
// and init (fields, ranges, items, defaults).
#include <cstdio>

#include "cli/commands.h"
#include "cli/fields.h"
#include "cli/library.h"

namespace krl::cli {
namespace {

void PrintEffect(const emu::Host& host, const emu::DeclaredEffect& e) {
  const emu::Instance instance(host, e);
  std::printf("%s  (%s)\n  %s\n", e.DisplayName().c_str(), e.name.c_str(), e.description.c_str());
  for (const emu::DeclaredField& f : e.fields) {
    for (const std::string& line : DescribeField(instance, f)) std::printf("  %s\n", line.c_str());
  }
}

}  // namespace

int List(const Options& options) {
  const auto host = LoadLibrary(options.library);
  const size_t count = host->effects().size();
  std::printf("%zu transition%s in %s\n\n", count, count == 1 ? "" : "s", host->path().c_str());
  for (const emu::DeclaredEffect& e : host->effects()) {
    PrintEffect(*host, e);
    std::printf("\n");
  }
  return 0;
}

int Info(const Options& options) {
  if (options.positional.size() != 1) throw UsageError("krl info takes one transition name");
  const auto host = LoadLibrary(options.library);
  PrintEffect(*host, FindEffect(*host, options.positional[0]));
  return 0;
}

}  // namespace krl::cli

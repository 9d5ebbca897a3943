// krl list, krl info and krl --version: transitions as the host sees them
// after KrDeclare and init (fields, ranges, items, defaults).
#include <algorithm>
#include <cstdio>
#include <vector>

#include "cli/commands.h"
#include "cli/fields.h"
#include "cli/library.h"

namespace krl::cli {
namespace {

using Row = std::vector<std::string>;

std::vector<size_t> Widths(const std::vector<Row>& rows) {
  std::vector<size_t> widths;
  for (const Row& row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
  }
  return widths;
}

// A row as columns of `widths`, two blanks apart, after `indent`; the last
// cell is not padded.
void PrintRow(const Row& row, const std::vector<size_t>& widths, const std::string& indent) {
  std::string line = indent;
  for (size_t i = 0; i < row.size(); ++i) {
    line += row[i];
    if (i + 1 < row.size()) line += std::string(widths[i] - row[i].size() + 2, ' ');
  }
  std::printf("%s\n", line.c_str());
}

std::string Plural(size_t n, const char* word) { return std::to_string(n) + " " + word + (n == 1 ? "" : "s"); }

}  // namespace

int Version(const Options& options) {
  AcceptOnly(options, {}, 0);
  const std::string path = LibraryPath(options.library);
  std::printf("krl, the previewer of the transitions library\n");
  std::printf("library      %s\n", path.c_str());
  std::printf("ABI          %s\n", LibraryAbi(path).c_str());
  const auto host = LoadLibrary(options.library);
  std::printf("transitions  %zu declared\n", host->effects().size());
  return 0;
}

int List(const Options& options) {
  AcceptOnly(options, {}, 0);
  const auto host = LoadLibrary(options.library);
  std::vector<const emu::DeclaredEffect*> effects;
  for (const emu::DeclaredEffect& e : host->effects()) effects.push_back(&e);
  std::stable_sort(effects.begin(), effects.end(),
                   [](const emu::DeclaredEffect* x, const emu::DeclaredEffect* y) { return x->name < y->name; });
  std::printf("%s in %s (%s)\n\n", Plural(effects.size(), "transition").c_str(), host->path().c_str(),
              LibraryAbi(host->path()).c_str());
  std::vector<Row> rows{{"MENU PATH", "NAME", "FIELDS"}};
  for (const emu::DeclaredEffect* e : effects) {
    std::string fields;
    for (const emu::DeclaredField& f : e->fields) {
      if (f.kind != "Input") fields += (fields.empty() ? "" : ", ") + f.key;
    }
    rows.push_back({e->name, e->DisplayName(), fields.empty() ? "-" : fields});
  }
  for (const Row& row : rows) PrintRow(row, Widths(rows), "");
  std::printf("\nkrl info NAME shows a transition's description, fields, ranges, items and defaults.\n");
  return 0;
}

int Info(const Options& options) {
  AcceptOnly(options, {}, 1);
  if (options.positional.size() != 1) throw UsageError("krl info takes one transition name");
  const auto host = LoadLibrary(options.library);
  const emu::DeclaredEffect& e = FindEffect(*host, options.positional[0]);
  const emu::Instance instance(*host, e);
  std::printf("%s  (%s)\n  %s\n\n", e.DisplayName().c_str(), e.name.c_str(), e.description.c_str());
  std::vector<Row> rows{{"FIELD", "KIND", "LABEL", "RANGE", "DEFAULT"}};
  for (const emu::DeclaredField& f : e.fields) {
    std::string range = RangeText(f);
    if (f.HasFlag("KrdfHideCurve")) range += (range.empty() ? "" : " ") + std::string("(no curve)");
    rows.push_back({f.key, f.kind, "\"" + f.label + "\"", range.empty() ? "-" : range,
                    f.kind == "Input" ? "-" : FieldValueText(instance, f)});
  }
  // Items and help go under their field, from its second column on.
  const std::vector<size_t> widths = Widths(rows);
  for (size_t r = 0; r < rows.size(); ++r) {
    PrintRow(rows[r], widths, "  ");
    if (r == 0) continue;
    const emu::DeclaredField& f = e.fields[r - 1];
    const std::string under(2 + widths[0] + 2, ' ');
    if (!f.items.empty()) std::printf("%sitems: %s\n", under.c_str(), ItemList(f).c_str());
    if (!f.help.empty()) std::printf("%s%s\n", under.c_str(), f.help.c_str());
  }
  return 0;
}

}  // namespace krl::cli

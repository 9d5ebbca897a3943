#include "bench/table_reporter.h"

#include <cstdlib>

namespace krl::bench {

void TableReporter::ReportRuns(const std::vector<Run>& runs) {
  for (const Run& run : runs) {
    auto median = run.counters.find(kMedianCounter);
    if (run.iterations > 0 && median != run.counters.end()) msPerFrame_[run.run_name.function_name] = median->second;
  }
  ConsoleReporter::ReportRuns(runs);
}

void TableReporter::Write(std::FILE* out, const std::string& title, const std::vector<std::string>& order,
                          bool tabSeparated) const {
  if (tabSeparated) {
    std::fprintf(out, "# %s\n", title.c_str());
  } else {
    std::fprintf(out, "\n%s\n%-50s %10s %9s %9s\n", title.c_str(), "transition / size / setting", "ms/frame", "MP/s",
                 "x floor");
  }
  for (const std::string& name : order) {
    auto it = msPerFrame_.find(name);
    if (it == msPerFrame_.end()) continue;
    // Names are "<what>/<w>x<h>[/<setting>]".
    const size_t slash = name.find('/');
    const std::string size = name.substr(slash + 1, name.find('/', slash + 1) - slash - 1);
    auto floor = msPerFrame_.find("floor read2write1/" + size);
    const int w = std::atoi(size.c_str()), h = std::atoi(size.c_str() + size.find('x') + 1);
    const double ratio = floor == msPerFrame_.end() ? 0.0 : it->second / floor->second;
    const double megapixelsPerSecond = w * h / (it->second * 1e3);
    std::fprintf(out, tabSeparated ? "%s\t%.3f\t%.1f\t%.2f\n" : "%-50s %10.3f %9.1f %9.2f\n", name.c_str(), it->second,
                 megapixelsPerSecond, ratio);
  }
}

}  // namespace krl::bench

// The table at the end of a benchmark run: each row's median time per frame,
// megapixels per second and ratio to the read-two-write-one floor of its size.
#pragma once

#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace krl::bench {

// The counter each row reports its median time per frame in, in milliseconds.
inline constexpr char kMedianCounter[] = "median ms/frame";

class TableReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override;

  // `title` opens the table; rows follow `order`. Tab-separated for scripts
  // (name, ms/frame, MP/s, x floor; the title as a "# " line), else in columns.
  void Write(std::FILE* out, const std::string& title, const std::vector<std::string>& order, bool tabSeparated) const;

 private:
  std::map<std::string, double> msPerFrame_;
};

}  // namespace krl::bench

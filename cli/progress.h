// A one-line progress bar with frames per second, drawn on a terminal only.
#pragma once

#include <chrono>
#include <string>

namespace krl::cli {

class ProgressBar {
 public:
  // Shown when stdout is a terminal and not `quiet`.
  ProgressBar(std::string label, int total, bool quiet);
  ~ProgressBar();  // ends the line of a bar that was drawn
  void Update(int done);
  bool shown() const { return shown_; }

 private:
  std::string label_;
  int total_;
  bool shown_;
  bool drawn_ = false;
  std::chrono::steady_clock::time_point start_, lastDrawn_;
};

}  // namespace krl::cli

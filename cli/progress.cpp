#include "cli/progress.h"

#include <unistd.h>

#include <cstdio>

namespace krl::cli {

ProgressBar::ProgressBar(std::string label, int total, bool quiet)
    : label_(std::move(label)), total_(total > 0 ? total : 1), shown_(!quiet && isatty(STDOUT_FILENO)),
      start_(std::chrono::steady_clock::now()) {}

ProgressBar::~ProgressBar() {
  if (drawn_) std::fputc('\n', stdout);
  std::fflush(stdout);
}

void ProgressBar::Update(int done) {
  if (!shown_) return;
  const auto now = std::chrono::steady_clock::now();
  // A terminal need not be redrawn more than ten times a second, except at the end.
  if (drawn_ && done < total_ && now - lastDrawn_ < std::chrono::milliseconds(100)) return;
  lastDrawn_ = now;
  constexpr int kWidth = 30;
  const int filled = done * kWidth / total_;
  const double seconds = std::chrono::duration<double>(now - start_).count();
  char bar[kWidth + 1];
  for (int i = 0; i < kWidth; ++i) bar[i] = i < filled ? '#' : '-';
  bar[kWidth] = '\0';
  std::printf("\r%s [%s] %d/%d frames  %.1f fps", label_.c_str(), bar, done, total_,
              seconds > 0.0 ? done / seconds : 0.0);
  std::fflush(stdout);
  drawn_ = true;
}

}  // namespace krl::cli

#include "cli/staging.h"

#include <unistd.h>

#include <csignal>
#include <system_error>

namespace krl::cli {
namespace fs = std::filesystem;
namespace {

volatile std::sig_atomic_t gInterrupted = 0;

void OnInterrupt(int) { gInterrupted = 1; }

// The nearest folder that exists on the way up to `p` (at worst ".").
fs::path ExistingAncestor(fs::path p) {
  std::error_code ec;
  while (!p.empty() && !fs::is_directory(p, ec)) p = p.parent_path();
  return p.empty() ? fs::path(".") : p;
}

fs::path HiddenName(const fs::path& folder, const fs::path& final) {
  return folder / (".krl-partial-" + std::to_string(getpid()) + "-" + final.filename().string());
}

}  // namespace

StagedFile::StagedFile(fs::path final) : final_(std::move(final)) {
  const fs::path folder = final_.parent_path().empty() ? fs::path(".") : final_.parent_path();
  temp_ = HiddenName(folder, final_);
}

StagedFile::~StagedFile() {
  if (committed_) return;
  std::error_code ec;
  fs::remove(temp_, ec);
}

void StagedFile::Commit() {
  std::error_code ec;
  fs::rename(temp_, final_, ec);
  if (ec) throw std::runtime_error("cannot write " + final_.string() + ": " + ec.message());
  committed_ = true;
}

StagedFolder::StagedFolder(fs::path final, bool replace) : final_(std::move(final)), replace_(replace) {
  if (final_.filename().empty()) final_ = final_.parent_path();  // "dir/" names "dir"
  temp_ = HiddenName(ExistingAncestor(final_.parent_path()), final_);
  std::error_code ec;
  fs::remove_all(temp_, ec);
  if (!fs::create_directory(temp_, ec)) {
    throw std::runtime_error("cannot write " + final_.string() + ": " + (ec ? ec.message() : "cannot create a folder"));
  }
}

StagedFolder::~StagedFolder() {
  std::error_code ec;
  fs::remove_all(temp_, ec);
}

void StagedFolder::Commit() {
  std::error_code ec;
  const auto fail = [&] { throw std::runtime_error("cannot write " + final_.string() + ": " + ec.message()); };
  if (!final_.parent_path().empty()) fs::create_directories(final_.parent_path(), ec);
  if (ec) fail();
  if (replace_) {
    const fs::path old = HiddenName(final_.parent_path().empty() ? fs::path(".") : final_.parent_path(),
                                    final_.string() + "-old");
    const bool had = fs::exists(final_, ec);
    if (had) fs::rename(final_, old, ec);
    if (ec) fail();
    fs::rename(temp_, final_, ec);
    if (ec) {
      if (had) fs::rename(old, final_, ec);
      fail();
    }
    fs::remove_all(old, ec);
  } else {
    fs::create_directories(final_, ec);
    if (ec) fail();
    for (const fs::directory_entry& entry : fs::directory_iterator(temp_)) {
      fs::rename(entry.path(), final_ / entry.path().filename(), ec);
      if (ec) fail();
    }
  }
}

void InstallInterruptHandlers() {
  std::signal(SIGINT, OnInterrupt);
  std::signal(SIGTERM, OnInterrupt);
  std::signal(SIGPIPE, SIG_IGN);
}

void ThrowIfInterrupted() {
  if (gInterrupted) throw Interrupted();
}

}  // namespace krl::cli

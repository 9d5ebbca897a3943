#include "cli/staging.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <system_error>

namespace krl::cli {
namespace fs = std::filesystem;
namespace {

volatile std::sig_atomic_t gInterrupted = 0;

void OnInterrupt(int signal) { gInterrupted = signal; }

constexpr const char* kHiddenPrefix = ".krl-partial-";

fs::path FolderOf(const fs::path& p) { return p.parent_path().empty() ? fs::path(".") : p.parent_path(); }

// The nearest folder that exists on the way up to `p` (at worst ".").
fs::path ExistingAncestor(fs::path p) {
  std::error_code ec;
  while (!p.empty() && !fs::is_directory(p, ec)) p = p.parent_path();
  return p.empty() ? fs::path(".") : p;
}

fs::path HiddenName(const fs::path& folder, const fs::path& final) {
  return folder / (kHiddenPrefix + std::to_string(getpid()) + "-" + final.filename().string());
}

// The part of `p` that exists and is not a folder, where one is in the way.
fs::path FileInTheWay(const fs::path& p) {
  std::error_code ec;
  fs::path walked;
  for (const fs::path& part : p) {
    walked /= part;
    if (fs::exists(walked, ec) && !fs::is_directory(walked, ec)) return walked;
  }
  return {};
}

// The first folder on the way to `p` that does not exist.
fs::path FirstMissing(const fs::path& p) {
  std::error_code ec;
  fs::path walked;
  for (const fs::path& part : p) {
    walked /= part;
    if (!fs::exists(walked, ec)) return walked;
  }
  return p;
}

}  // namespace

std::string CannotWrite(const fs::path& target, int error, const fs::path& in) {
  const fs::path folder = in.empty() ? FolderOf(target) : in;
  std::string why;
  switch (error) {
    case ENOENT: why = "the folder " + FirstMissing(folder).string() + " does not exist"; break;
    case ENOTDIR: {
      const fs::path file = FileInTheWay(folder);
      why = (file.empty() ? folder : file).string() + " is a file, not a folder";
      break;
    }
    case EISDIR: why = "it is a folder: name a file"; break;
    case EACCES:
    case EPERM: why = "no permission to write in " + folder.string(); break;
    case EROFS: why = folder.string() + " is on a read-only file system"; break;
    case ENOSPC: why = "the disk is full"; break;
    case EDQUOT: why = "the disk quota is used up"; break;
    case ENAMETOOLONG: why = "the name is too long"; break;
    default: why = std::strerror(error);
  }
  return "cannot write " + target.string() + ": " + why;
}

void RemoveAbandoned(const fs::path& folder) {
  // Inside a folder krl stages itself there is nothing abandoned to look for.
  for (const fs::path& part : folder) {
    if (part.string().rfind(kHiddenPrefix, 0) == 0) return;
  }
  std::error_code ec;
  for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
    const std::string name = it->path().filename().string();
    if (name.rfind(kHiddenPrefix, 0) != 0) continue;
    const long pid = std::strtol(name.c_str() + std::strlen(kHiddenPrefix), nullptr, 10);
    // Alive (or another user's): kill answers 0 or EPERM; gone: ESRCH.
    if (pid <= 0 || pid == getpid() || kill(static_cast<pid_t>(pid), 0) == 0 || errno != ESRCH) continue;
    std::error_code ignored;
    fs::remove_all(it->path(), ignored);
  }
}

StagedFile::StagedFile(fs::path final) : final_(std::move(final)) {
  std::error_code ec;
  if (final_.filename().empty() || fs::is_directory(final_, ec)) throw std::runtime_error(CannotWrite(final_, EISDIR));
  RemoveAbandoned(FolderOf(final_));
  temp_ = HiddenName(FolderOf(final_), final_);
  // Made now, so that a place that cannot be written is found before any work.
  const int fd = open(temp_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (fd < 0) throw std::runtime_error(CannotWrite(final_, errno));
  close(fd);
}

StagedFile::~StagedFile() {
  if (committed_) return;
  std::error_code ec;
  fs::remove(temp_, ec);
}

void StagedFile::Commit() {
  std::error_code ec;
  fs::rename(temp_, final_, ec);
  if (ec) throw std::runtime_error(CannotWrite(final_, ec.value()));
  committed_ = true;
}

StagedFolder::StagedFolder(fs::path final, bool replace) : final_(std::move(final)), replace_(replace) {
  if (final_.filename().empty()) final_ = final_.parent_path();  // "dir/" names "dir"
  std::error_code ec;
  if (const fs::path file = FileInTheWay(final_); !file.empty()) {
    throw std::runtime_error("cannot write " + final_.string() + ": " + file.string() + " is a file, not a folder");
  }
  const fs::path home = ExistingAncestor(final_.parent_path());
  RemoveAbandoned(home);
  temp_ = HiddenName(home, final_);
  fs::remove_all(temp_, ec);
  if (!fs::create_directory(temp_, ec)) throw std::runtime_error(CannotWrite(final_, ec ? ec.value() : EEXIST, home));
}

StagedFolder::~StagedFolder() {
  std::error_code ec;
  fs::remove_all(temp_, ec);
}

void StagedFolder::Commit() {
  std::error_code ec;
  const auto fail = [&] { throw std::runtime_error(CannotWrite(final_, ec.value(), final_)); };
  if (!final_.parent_path().empty()) fs::create_directories(final_.parent_path(), ec);
  if (ec) fail();
  if (replace_) {
    const fs::path old = HiddenName(FolderOf(final_), final_.filename().string() + "-old");
    const bool had = fs::exists(final_, ec);
    if (had) fs::rename(final_, old, ec);
    if (ec) fail();
    fs::rename(temp_, final_, ec);
    if (ec) {
      std::error_code undo;
      if (had) fs::rename(old, final_, undo);
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

int InterruptSignal() { return gInterrupted; }

}  // namespace krl::cli

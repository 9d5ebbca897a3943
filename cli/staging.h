// Outputs that appear whole or not at all. A file or folder is written under
// a hidden temporary name beside its final place and renamed into place only
// when complete, so an error or Ctrl-C leaves nothing under the output name.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

namespace krl::cli {

// A file at `final`; write to path(), then Commit(). Destroyed without a
// commit, it removes what was written.
class StagedFile {
 public:
  explicit StagedFile(std::filesystem::path final);
  ~StagedFile();
  StagedFile(const StagedFile&) = delete;
  StagedFile& operator=(const StagedFile&) = delete;

  // The temporary name: hidden, beside the final one, same extension.
  const std::filesystem::path& path() const { return temp_; }
  void Commit();

 private:
  std::filesystem::path final_, temp_;
  bool committed_ = false;
};

// A folder of files that are moved to `final` (created if needed) on
// Commit(). With `replace`, a folder already at `final` is replaced whole;
// without, the files join what is there.
class StagedFolder {
 public:
  StagedFolder(std::filesystem::path final, bool replace);
  ~StagedFolder();
  StagedFolder(const StagedFolder&) = delete;
  StagedFolder& operator=(const StagedFolder&) = delete;

  const std::filesystem::path& path() const { return temp_; }
  void Commit();

 private:
  std::filesystem::path final_, temp_;
  bool replace_;
};

// Ctrl-C and SIGTERM set a flag that long loops poll through
// ThrowIfInterrupted, so that staged outputs are cleaned up on the way out.
// A closed pipe to a helper program becomes a write error, not a signal.
void InstallInterruptHandlers();
void ThrowIfInterrupted();
struct Interrupted : std::runtime_error {
  Interrupted() : std::runtime_error("interrupted") {}
};

}  // namespace krl::cli

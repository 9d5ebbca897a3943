// Outputs that appear whole or not at all. A file or folder is written under
// a hidden temporary name beside its final place and renamed into place only
// when complete, so an error or Ctrl-C leaves nothing under the output name.
// Hidden files that a killed krl left behind are removed by the next run
// that writes in the same folder.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

namespace krl::cli {

// "cannot write X: the folder /a does not exist" and the like: the reason
// for an error number in a user's terms, naming the folder or file at fault.
// `folder`: where it was being written, if not the target's own folder.
std::string CannotWrite(const std::filesystem::path& target, int error, const std::filesystem::path& folder = {});

// A file at `final`; write to path(), then Commit(). Destroyed without a
// commit, it removes what was written. Throws at once, with the reason, when
// `final` names a folder or a place that cannot be written.
class StagedFile {
 public:
  explicit StagedFile(std::filesystem::path final);
  ~StagedFile();
  StagedFile(const StagedFile&) = delete;
  StagedFile& operator=(const StagedFile&) = delete;

  // The temporary name: hidden, beside the final one, same extension.
  const std::filesystem::path& path() const { return temp_; }
  const std::filesystem::path& final() const { return final_; }
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
  const std::filesystem::path& final() const { return final_; }
  void Commit();

 private:
  std::filesystem::path final_, temp_;
  bool replace_;
};

// Removes the hidden files and folders in `folder` that a krl no longer
// running left there.
void RemoveAbandoned(const std::filesystem::path& folder);

// Ctrl-C and SIGTERM set a flag that long loops poll through
// ThrowIfInterrupted, so that staged outputs are cleaned up on the way out.
// A closed pipe to a helper program becomes a write error, not a signal.
void InstallInterruptHandlers();
void ThrowIfInterrupted();
// The signal that interrupted krl, 0 while none did.
int InterruptSignal();
struct Interrupted : std::runtime_error {
  Interrupted() : std::runtime_error("interrupted") {}
};

}  // namespace krl::cli

// krl gallery: every declared transition as a filmstrip, its animation
// frames and (with ffmpeg) an animated WebP, and an index.html that shows
// them all.
#include <cstdio>
#include <deque>
#include <filesystem>
#include <future>
#include <fstream>
#include <iterator>
#include <set>
#include <algorithm>

#include "cli/commands.h"
#include "cli/ffmpeg.h"
#include "cli/fields.h"
#include "cli/gallery_page.h"
#include "cli/image_io.h"
#include "cli/inputs.h"
#include "cli/library.h"
#include "cli/outputs.h"
#include "cli/progress.h"
#include "cli/staging.h"
#include "emulator/sample_clips.h"

namespace krl::cli {
namespace fs = std::filesystem;
namespace {

constexpr uint32_t kFilmstripBackground = 0xFF22262E;

// A name for the transition's folder: "traditional-fade", unique in the gallery.
std::string FolderName(const std::string& name, std::set<std::string>& taken) {
  const std::string base = Slug(name).empty() ? "transition" : Slug(name);
  std::string folder = base;
  for (int n = 2; !taken.insert(folder).second; ++n) folder = base + "-" + std::to_string(n);
  return folder;
}

std::string InputsText(const Options& options) {
  if (options.a.empty() && options.b.empty()) return "the built-in sample clips";
  return (options.a.empty() ? "sample clip A" : options.a) + " and " + (options.b.empty() ? "sample clip B" : options.b);
}

// A file of the gallery a krl older than the list of files wrote: index.html
// and the pictures in the folders of its transitions.
bool OlderGalleryFile(const fs::path& relative) {
  const std::string name = relative.filename().string();
  if (relative == "index.html") return true;
  return std::distance(relative.begin(), relative.end()) == 2 &&
         (name == kFramesFile || name == kFilmstripFile || name == "preview.webp");
}

// A folder at `dir` is replaced only when it is empty or holds nothing but a
// gallery krl wrote; else the error names what is in the way.
void CheckReplaceable(const fs::path& dir) {
  std::error_code ec;
  if (!fs::exists(dir, ec)) return;
  if (!fs::is_directory(dir, ec)) throw std::runtime_error("cannot write " + dir.string() + ": it is a file, not a folder");
  if (fs::is_empty(dir, ec)) return;
  std::ifstream in(dir / "index.html");
  const std::string page((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  const bool gallery = page.find(kGalleryMarker) != std::string::npos;
  std::vector<std::string> listed;
  const bool hasList = gallery && ListedFiles(page, &listed);
  const std::set<std::string> ours(listed.begin(), listed.end());
  std::set<std::string> folders;  // the folders that hold files of the gallery
  for (const std::string& file : listed) {
    for (fs::path p = fs::path(file).parent_path(); !p.empty(); p = p.parent_path()) folders.insert(p.string());
  }
  std::vector<std::string> inTheWay;
  for (auto it = fs::recursive_directory_iterator(dir, ec); !ec && it != fs::recursive_directory_iterator();
       it.increment(ec)) {
    const fs::path relative = it->path().lexically_relative(dir);
    const bool folder = it->is_directory(ec);
    bool mine = false;
    if (!gallery) {
      mine = false;
    } else if (hasList) {
      mine = folder ? folders.count(relative.string()) > 0 : ours.count(relative.string()) > 0;
    } else {
      mine = folder ? std::distance(relative.begin(), relative.end()) == 1 && fs::exists(it->path() / kFramesFile, ec)
                    : OlderGalleryFile(relative);
    }
    if (mine) continue;
    inTheWay.push_back(relative.string() + (folder ? "/" : ""));
    if (folder) it.disable_recursion_pending();  // named whole
  }
  if (inTheWay.empty()) return;
  std::sort(inTheWay.begin(), inTheWay.end());
  std::string named;
  for (size_t i = 0; i < inTheWay.size() && i < 5; ++i) named += (i == 0 ? "" : ", ") + inTheWay[i];
  if (inTheWay.size() > 5) named += " and " + std::to_string(inTheWay.size() - 5) + " more";
  throw std::runtime_error("cannot write the gallery to " + dir.string() + ": " +
                           (gallery ? "besides a gallery of krl it holds " : "it is not a gallery krl wrote and holds ") +
                           named + "; move " + (inTheWay.size() == 1 ? "it" : "them") +
                           " away or name an empty or new folder");
}

std::vector<GalleryField> FieldsOf(const emu::Instance& instance) {
  std::vector<GalleryField> fields;
  for (const emu::DeclaredField& f : instance.effect().fields) {
    if (f.kind == "Input") continue;
    fields.push_back({f.key, f.label, f.kind, RangeText(f), FieldValueText(instance, f), ItemList(f), f.help});
  }
  return fields;
}

std::vector<emu::Frame> ReadFrames(InputClip& clip, int32_t count) {
  std::vector<emu::Frame> frames;
  for (int32_t i = 0; i < count; ++i) frames.push_back(clip.Next());
  return frames;
}

struct Inputs {
  std::vector<emu::Frame> a, b;
};

// Renders one transition into `folder`: its frames stacked in one picture
// and its filmstrip. Returns the frames.
std::vector<emu::Frame> RenderEntry(const emu::Host& host, const emu::DeclaredEffect& effect, const Inputs& in,
                                    const fs::path& folder, GalleryEntry& entry, ProgressBar& bar, int& done) {
  emu::Instance instance(host, effect);
  entry.fields = FieldsOf(instance);
  const int32_t n = static_cast<int32_t>(in.a.size());
  std::vector<emu::Frame> frames(n, emu::Frame(in.a[0].width, in.a[0].height));
  for (int32_t i = 0; i < n; ++i) {
    ThrowIfInterrupted();
    RenderFrame(instance, in.a[i], in.b[i], frames[i], ProgressOf(i, n));
    bar.Update(++done);
  }
  std::vector<const emu::Frame*> stack, film;
  for (const emu::Frame& f : frames) stack.push_back(&f);
  // The filmstrip's Progress k/6 is an animation frame when 6 divides n - 1;
  // otherwise it is rendered at exactly k/6 from the nearest input frame.
  std::vector<emu::Frame> extra;
  extra.reserve(kFilmstripPictures);
  for (int32_t k = 0; k < kFilmstripPictures; ++k) {
    const int32_t nearest = (k * (n - 1) + 3) / 6;
    if (k * (n - 1) % 6 == 0) {
      film.push_back(&frames[nearest]);
      continue;
    }
    extra.emplace_back(in.a[0].width, in.a[0].height);
    RenderFrame(instance, in.a[nearest], in.b[nearest], extra.back(), ProgressOf(k, kFilmstripPictures));
    film.push_back(&extra.back());
  }
  fs::create_directory(folder);
  WriteJpeg(Strip(stack, false, 0, 0), (folder / kFramesFile).string(), 85);
  WritePng(Strip(film, true, kFilmstripGap, kFilmstripBackground), (folder / kFilmstripFile).string());
  return frames;
}

// Animated previews, encoded by ffmpeg while the next transitions render;
// at most two at a time. One that fails is left out of the page.
class PreviewEncoder {
 public:
  PreviewEncoder(std::vector<GalleryEntry>& entries, double fps) : entries_(entries), fps_(fps) {}
  ~PreviewEncoder() {
    for (auto& job : pending_) job.second.wait();
  }
  void Add(size_t entry, const fs::path& file, std::vector<emu::Frame> frames) {
    if (pending_.size() >= 2) CollectOne();
    entries_[entry].animation = file.filename().string();
    pending_.emplace_back(entry, std::async(std::launch::async, [file, fps = fps_, frames = std::move(frames)] {
      try {
        const auto animation = OpenOutput(file.string(), {frames[0].width, frames[0].height}, fps);
        for (const emu::Frame& f : frames) animation->Write(f);
        animation->Finish();
        return std::string();
      } catch (const std::runtime_error& e) {
        return std::string(e.what());
      }
    }));
  }
  void CollectAll() {
    while (!pending_.empty()) CollectOne();
  }

 private:
  void CollectOne() {
    auto [entry, job] = std::move(pending_.front());
    pending_.pop_front();
    if (const std::string why = job.get(); !why.empty()) {
      entries_[entry].animation.clear();
      std::fprintf(stderr, "krl: no animated preview of %s: %s\n", entries_[entry].name.c_str(), why.c_str());
    }
  }

  std::vector<GalleryEntry>& entries_;
  double fps_;
  std::deque<std::pair<size_t, std::future<std::string>>> pending_;
};

}  // namespace

int Gallery(const Options& options) {
  if (options.output.empty()) throw UsageError("krl gallery needs -o DIR");
  AcceptOnly(options, {"--output", "--size", "--frames", "--fps", "--a", "--b", "--quiet"}, 0);
  const int32_t frames = options.frames.empty() ? 25 : ParseCount("--frames", options.frames, 2, 1000);
  const double fps = options.fps.empty() ? 25.0 : ParsePositive("--fps", options.fps, 100.0);
  const fs::path dir = options.output;
  CheckReplaceable(dir);

  const auto host = LoadLibrary(options.library);
  InputClip a(options.a, emu::SampleClipA, fps), b(options.b, emu::SampleClipB, fps);
  const Size size = FitInputs(options.size, a, b, {320, 180});
  const Inputs inputs{ReadFrames(a, frames), ReadFrames(b, frames)};
  const std::string ffmpeg = FindFfmpeg();

  StagedFolder staged(dir, true);
  std::vector<GalleryEntry> entries;
  entries.reserve(host->effects().size());  // the encoder keeps indices into it
  PreviewEncoder encoder(entries, fps);
  std::set<std::string> taken;
  int done = 0, failed = 0;
  {
    ProgressBar bar("gallery", static_cast<int>(host->effects().size()) * frames, options.quiet);
    for (const emu::DeclaredEffect& effect : host->effects()) {
      GalleryEntry& entry = entries.emplace_back();
      entry.name = effect.DisplayName();
      entry.menuPath = effect.name;
      entry.description = effect.description;
      entry.folder = FolderName(entry.name, taken);
      try {
        const fs::path folder = staged.path() / entry.folder;
        std::vector<emu::Frame> rendered = RenderEntry(*host, effect, inputs, folder, entry, bar, done);
        if (!ffmpeg.empty()) encoder.Add(entries.size() - 1, folder / "preview.webp", std::move(rendered));
      } catch (const Refused& e) {
        // One transition that cannot be shown does not spoil the others.
        entry.failure = e.what();
        ++failed;
        std::error_code ec;
        fs::remove_all(staged.path() / entry.folder, ec);
        std::fprintf(stderr, "%skrl: %s\n", bar.shown() ? "\n" : "", e.what());
      }
    }
  }
  encoder.CollectAll();
  const GalleryLayout layout{size, frames, fps, InputsText(options), fs::path(host->path()).filename().string()};
  {
    std::ofstream page(staged.path() / "index.html", std::ios::binary);
    page << GalleryPage(entries, layout);
    if (!page.flush()) throw std::runtime_error("cannot write " + (dir / "index.html").string());
  }
  staged.Commit();
  if (!options.quiet) {
    std::printf("wrote a gallery of %zu transition%s to %s%s; open %s\n", entries.size(),
                entries.size() == 1 ? "" : "s", dir.string().c_str(),
                failed > 0 ? (" (" + std::to_string(failed) + " could not be rendered)").c_str() : "",
                fs::absolute(dir / "index.html").lexically_normal().string().c_str());
  }
  return 0;
}

}  // namespace krl::cli

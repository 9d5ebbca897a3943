// The gallery page in a real browser (headless Chromium, as Debian ships
// it): it loads without console errors, every image loads, a Progress slider
// changes the shown frame, and a screenshot shows that frame where the page
// says it is. The page checks itself when opened as index.html#selftest and
// writes its findings into #selftest; the browser prints that DOM.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <sstream>

#include "cli/gallery_page.h"
#include "cli/image_io.h"
#include "cli_run.h"
#include "test_support.h"

namespace krl::test {
namespace {

constexpr int32_t kWidth = 160, kHeight = 90, kFrames = 13;

std::string Chromium() {
  if (const char* env = std::getenv("KRL_CHROMIUM"); env != nullptr && *env != '\0') return env;
  for (const char* name : {"chromium", "chromium-browser"}) {
    if (Shell(std::string("command -v ") + name + " >/dev/null").exit == 0) return name;
  }
  return "";
}

// Headless, offline, and at one device pixel per CSS pixel.
std::string Browser(const std::string& chromium, const std::string& profile) {
  return chromium + " --headless --no-sandbox --disable-gpu --disable-quic --no-first-run" +
         " --disable-background-networking --disable-component-update --disable-sync --hide-scrollbars" +
         " --force-device-scale-factor=1 --window-size=1000,700 --virtual-time-budget=4000 --user-data-dir=" + profile;
}

// "key rest of line" lines of the page's findings.
std::map<std::string, std::string> Findings(const std::string& dom) {
  std::map<std::string, std::string> found;
  const size_t pre = dom.find("<pre id=\"selftest\"");
  if (pre == std::string::npos) return found;
  const size_t start = dom.find('>', pre) + 1;
  std::istringstream lines(dom.substr(start, dom.find("</pre>", start) - start));
  for (std::string line; std::getline(lines, line);) {
    const size_t blank = line.find(' ');
    found[line.substr(0, blank)] = blank == std::string::npos ? "" : line.substr(blank + 1);
  }
  return found;
}

// Mean difference per channel between the screenshot's picture whose top-left
// corner is (left, top) and frame k of `stack`, frames stacked top to bottom.
double MeanDifference(const emu::Frame& shot, int32_t left, int32_t top, const emu::Frame& stack, int32_t k) {
  int64_t sum = 0;
  for (int32_t down = 0; down < kHeight; ++down) {  // rows count from the bottom in a frame
    for (int32_t x = 0; x < kWidth; ++x) {
      const uint32_t s = shot.At(left + x, shot.height - 1 - top - down);
      const uint32_t f = stack.At(x, stack.height - 1 - k * kHeight - down);
      for (int shift = 0; shift < 24; shift += 8) sum += std::abs(int((s >> shift) & 255) - int((f >> shift) & 255));
    }
  }
  return static_cast<double>(sum) / (3.0 * kWidth * kHeight);
}

TEST(GalleryPage, WorksInHeadlessChromium) {
  const std::string chromium = Chromium();
  if (chromium.empty()) GTEST_SKIP() << "Chromium is not installed";
  const std::string dir = FreshFolder("page"), gallery = dir + "/gallery";
  const Outcome made = Krl("gallery --quiet --size " + std::to_string(kWidth) + "x" + std::to_string(kHeight) +
                           " --frames " + std::to_string(kFrames) + " -o " + gallery);
  ASSERT_EQ(made.exit, 0) << made.output;
  const std::string url = "'file://" + gallery + "/index.html#selftest'";

  const Outcome dom = Shell(Browser(chromium, dir + "/profile-dom") + " --enable-logging=stderr --v=0" +
                            " --dump-dom " + url + " 2>" + dir + "/browser.log");
  ASSERT_EQ(dom.exit, 0) << dom.output;
  const std::string log = ReadFile(dir + "/browser.log");
  EXPECT_EQ(log.find(":CONSOLE"), std::string::npos) << log;
  auto found = Findings(dom.output);
  ASSERT_FALSE(found.empty()) << "the page did not check itself:\n" << dom.output;
  const size_t effects = Library().effects().size();
  EXPECT_EQ(found["cards"], std::to_string(effects));
  EXPECT_EQ(found["images"], std::to_string(2 * effects) + "/" + std::to_string(2 * effects)) << found["broken"];
  EXPECT_EQ(found["errors"], "0 ");
  EXPECT_EQ(found["slider"], "moves");
  EXPECT_EQ(found["enlarge"], "works") << "the player doubles its size and comes back";
  EXPECT_EQ(found["result"], "passed") << "what the page shows a person who opens it with #selftest";
  EXPECT_NE(dom.output.find("<pre id=\"selftest\" class=\"passed\">"), std::string::npos) << "shown, not hidden";

  // The first transition, paused by the self-test at frame k of its slider.
  std::istringstream frame(found["frame"]), view(found["view"]);
  std::string folder;
  int k = -1, left = -1, top = -1, width = 0, height = 0;
  frame >> folder >> k;
  view >> left >> top >> width >> height;
  const emu::DeclaredEffect& first = Library().effects().front();
  ASSERT_EQ(folder, cli::Slug(first.DisplayName()));
  ASSERT_EQ(k, kFrames / 2);
  ASSERT_EQ(width, kWidth);
  ASSERT_EQ(height, kHeight);

  const std::string shot = dir + "/shot.png";
  const Outcome took = Shell(Browser(chromium, dir + "/profile-shot") + " --screenshot=" + shot + " " +
                             url + " >/dev/null 2>&1");
  ASSERT_EQ(took.exit, 0) << took.output;
  const emu::Frame picture = cli::ReadImage(shot);
  ASSERT_GE(picture.width, left + kWidth);
  ASSERT_GE(picture.height, top + kHeight);
  // The page shows the stored frames (JPEG, so compared with the stored
  // ones, not with the renders); the browser decodes them a little otherwise.
  const emu::Frame stack = cli::ReadImage(gallery + "/" + folder + "/" + cli::kFramesFile);
  const double shown = MeanDifference(picture, left, top, stack, k);
  const double start = MeanDifference(picture, left, top, stack, 0);
  EXPECT_LT(shown, 2.0) << "the screenshot does not show frame " << k << " of " << first.name;
  EXPECT_LT(shown * 4, start) << "the screenshot shows the first frame, not frame " << k;
  if (!HasFailure()) std::filesystem::remove_all(dir);  // kept to look at when something failed
}

}  // namespace
}  // namespace krl::test

// krl gallery: every declared transition gets a filmstrip at Progress 0,
// 1/6, ..., 1 (checked pixel for pixel), its stacked animation frames, an
// entry on the page; and a folder that is not a gallery is never replaced.
#include <gtest/gtest.h>

#include <filesystem>

#include "cli/gallery_page.h"
#include "cli/image_io.h"
#include "cli_run.h"
#include "test_support.h"

namespace krl::test {
namespace {

// Picture k of a filmstrip of pictures w x h.
emu::Frame FilmstripPicture(const emu::Frame& strip, int32_t k, int32_t w, int32_t h) {
  emu::Frame picture(w, h);
  for (int32_t y = 0; y < h; ++y) {
    for (int32_t x = 0; x < w; ++x) picture.At(x, y) = strip.At(k * (w + cli::kFilmstripGap) + x, y);
  }
  return picture;
}

TEST(Gallery, ShowsEveryDeclaredTransition) {
  const std::string dir = FreshFolder("gallery") + "/out";
  // 7 frames: the filmstrip's pictures are animation frames; 9: they are
  // rendered apart. The first run adds animated previews where ffmpeg is
  // installed; the second, without ffmpeg, replaces that gallery.
  for (const auto& [frames, ffmpeg] : {std::pair{7, true}, {9, false}}) {
    const bool previews = ffmpeg && HaveFfmpeg();
    const Outcome r = Krl("gallery -o " + dir + " --size 24x14 --quiet --frames " + std::to_string(frames),
                          previews ? "" : "PATH=/nonexistent");
    ASSERT_EQ(r.exit, 0) << r.output;
    EXPECT_EQ(r.output, "");
    const std::string page = ReadFile(dir + "/index.html");
    EXPECT_NE(page.find(cli::kGalleryMarker), std::string::npos);
    EXPECT_EQ(page.find("http"), std::string::npos) << "the page refers to nothing outside";
    EXPECT_EQ(page.find("traditional-fade/preview.webp") != std::string::npos, previews);
    if (previews) {
      const std::string webp = ReadFile(dir + "/traditional-fade/preview.webp");
      EXPECT_EQ(webp.substr(0, 4) + webp.substr(8, 4), "RIFFWEBP");
    }
    for (const emu::DeclaredEffect& e : Library().effects()) {
      SCOPED_TRACE(e.name);
      const std::string folder = dir + "/" + cli::Slug(e.DisplayName());
      EXPECT_NE(page.find("<h3>" + e.DisplayName() + " <a class=\"anchor\" href=\"#" + cli::Slug(e.DisplayName())),
                std::string::npos);
      EXPECT_NE(page.find("<h2>" + e.name.substr(0, e.name.rfind('/')) + "</h2>"), std::string::npos);
      const emu::Frame stack = cli::ReadImage(folder + "/" + cli::kFramesFile);
      ASSERT_EQ(stack.width, 24);
      ASSERT_EQ(stack.height, 14 * frames);
      const emu::Frame strip = cli::ReadImage(folder + "/" + cli::kFilmstripFile);
      ASSERT_EQ(strip.width, 7 * 24 + 6 * cli::kFilmstripGap);
      ASSERT_EQ(strip.height, 14);
      // Transitions that draw from rand() depend on what rendered before
      // them; the fade, which does not, shows that every picture is right.
      for (int k = 0; k <= 6 && e.DisplayName() == "Traditional Fade"; ++k) {
        const int nearest = (k * (frames - 1) + 3) / 6;
        EXPECT_EQ(FilmstripPicture(strip, k, 24, 14).pixels, Expected(e.name, 24, 14, nearest, k / 6.0).pixels)
            << "Progress " << k << "/6 of " << frames << " frames";
      }
    }
    EXPECT_TRUE(Leftovers(dir + "/..").empty());
  }
}

TEST(Gallery, ShowsTheTransitionsThatRenderAndSaysWhichDoNot) {
  const std::string dir = FreshFolder("gallery_refused") + "/out";
  const Outcome r = Krl("gallery --size 8x6 --frames 5 -o " + dir + " --library " + KRL_REFUSING_PLUGIN_PATH,
                        "PATH=/nonexistent");
  EXPECT_EQ(r.exit, 0) << r.output;
  EXPECT_NE(r.output.find("krl: Refuses refused the frame at Progress 0.75: Past the middle"), std::string::npos)
      << r.output;
  EXPECT_NE(r.output.find("wrote a gallery of 2 transitions to " + dir + " (1 could not be rendered)"),
            std::string::npos) << r.output;
  const std::string page = ReadFile(dir + "/index.html");
  EXPECT_NE(page.find("Could not be rendered: Refuses refused the frame at Progress 0.75: Past the middle"),
            std::string::npos);
  EXPECT_TRUE(Exists(dir + "/shows-b/" + cli::kFilmstripFile));
  EXPECT_FALSE(Exists(dir + "/refuses"));
  EXPECT_EQ(page.find("refuses/"), std::string::npos) << "no picture of what was not rendered";
}

TEST(Gallery, ReplacesOnlyWhatItWrote) {
  const std::string dir = FreshFolder("gallery_replace");
  const std::string ours = dir + "/ours", theirs = dir + "/theirs";
  const std::string gallery = "gallery --size 8x6 --frames 2 -o ";
  ASSERT_EQ(Krl(gallery + ours, "PATH=/nonexistent").exit, 0);
  // What a user adds to a gallery stops the next one and is named; once it
  // is gone, the gallery is replaced.
  const struct {
    std::vector<std::string> added;  // files, and folders where they end in /
    std::string named;
  } rows[] = {
      {{"notes.txt", "mine/"}, "besides a gallery of krl it holds mine/, notes.txt; move them away"},
      {{"traditional-fade/notes.txt"}, "besides a gallery of krl it holds traditional-fade/notes.txt; move it away"},
      {{}, ""},
  };
  for (const auto& row : rows) {
    for (const std::string& f : row.added) {
      std::filesystem::create_directories(std::filesystem::path(ours + "/" + f).parent_path());
      if (f.back() != '/') WriteFile(ours + "/" + f, "keep me\n");
    }
    const Outcome again = Krl(gallery + ours, "PATH=/nonexistent");
    EXPECT_EQ(again.exit, row.named.empty() ? 0 : 1) << again.output;
    EXPECT_EQ(again.output.find("krl: cannot write the gallery to " + ours + ": " + row.named) != std::string::npos,
              !row.named.empty()) << again.output;
    for (const std::string& f : row.added) {
      EXPECT_TRUE(f.back() == '/' ? Exists(ours + "/" + f) : ReadFile(ours + "/" + f) == "keep me\n") << f;
      std::filesystem::remove_all(ours + "/" + f);
    }
    EXPECT_TRUE(Exists(ours + "/index.html"));
  }

  std::filesystem::create_directories(theirs);
  WriteFile(theirs + "/notes.txt", "keep me\n");
  const Outcome refused = Krl(gallery + theirs);
  EXPECT_EQ(refused.exit, 1);
  EXPECT_NE(refused.output.find(theirs + ": it is not a gallery krl wrote and holds notes.txt"), std::string::npos)
      << refused.output;
  EXPECT_EQ(ReadFile(theirs + "/notes.txt"), "keep me\n");
  EXPECT_FALSE(Exists(theirs + "/index.html"));

  const Outcome broken = Krl(gallery + dir + "/new --library /nonexistent/lib.so");
  EXPECT_EQ(broken.exit, 1);
  EXPECT_FALSE(Exists(dir + "/new"));
  EXPECT_TRUE(Leftovers(dir).empty());
}

}  // namespace
}  // namespace krl::test

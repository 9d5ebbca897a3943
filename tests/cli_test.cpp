// krl as a user runs it: a rendered PNG checked byte for byte, and a clear
// message with a non-zero exit for every mistake.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "cli/image_io.h"
#include "cli_run.h"
#include "test_support.h"

namespace krl::test {
namespace {

TEST(Cli, RendersTraditionalFadeExactlyFromTheBuiltInClips) {
  const std::string png = FreshFolder("fade") + "/fade.png";
  const Outcome r = Krl("render \"Traditional Fade\" --progress 0.25 -o " + png);
  ASSERT_EQ(r.exit, 0) << r.output;
  const emu::Frame out = cli::ReadImage(png);
  const emu::Frame a = emu::SampleClipA(out.width, out.height), b = emu::SampleClipB(out.width, out.height);
  ASSERT_EQ(out.ByteCount(), a.ByteCount());
  for (size_t i = 0; i < out.ByteCount(); ++i) {
    ASSERT_EQ(out.Bytes()[i], (a.Bytes()[i] * 192 + b.Bytes()[i] * 64) >> 8) << "byte " << i;
  }
  std::remove(png.c_str());
}

TEST(Cli, ListsByMenuPathInColumnsAndDescribesTransitions) {
  const Outcome list = Krl("list");
  ASSERT_EQ(list.exit, 0) << list.output;
  // One line a transition, sorted by menu path, its name and fields in columns.
  std::vector<std::string> paths;
  for (const emu::DeclaredEffect& e : Library().effects()) paths.push_back(e.name);
  std::sort(paths.begin(), paths.end());
  const size_t header = list.output.find("MENU PATH");
  ASSERT_NE(header, std::string::npos) << list.output;
  const size_t nameColumn = list.output.find("NAME", header) - header;
  size_t at = list.output.find('\n', header) + 1;
  for (const std::string& path : paths) {
    const std::string line = list.output.substr(at, list.output.find('\n', at) - at);
    EXPECT_EQ(line.rfind(path + "  ", 0), 0u) << line;
    const emu::DeclaredEffect& e = Effect(Library(), path);
    EXPECT_EQ(line.substr(nameColumn, e.DisplayName().size() + 2), e.DisplayName() + "  ") << line;
    at += line.size() + 1;
  }
  // The fields start in their column, however wide the widest name makes it.
  const size_t fieldsColumn = list.output.find("FIELDS", header) - header;
  const size_t fadeRow = list.output.find("\nTransitions/Dissolve/Traditional Fade ") + 1;
  EXPECT_EQ(list.output.compare(fadeRow + fieldsColumn, 22, "TransType, Progression"), 0) << list.output;

  const Outcome info = Krl("info traditionalfade");
  EXPECT_EQ(info.exit, 0);
  for (const char* text : {"Traditional Fade  (Transitions/Dissolve/Traditional Fade)", "Allows to adjust the fade's progression.",
                           "Progression  Alpha     \"Progression\"  -      curve (0, 0) (0.5, 0.5) (1, 1)",
                           "items: 0 \"Image 1 > Image 2\""}) {
    EXPECT_NE(info.output.find(text), std::string::npos) << text << "\n" << info.output;
  }
}

TEST(Cli, SaysItsVersionLibraryAbiAndTransitionCount) {
  const Outcome r = Krl("--version");
  ASSERT_EQ(r.exit, 0) << r.output;
  const std::string abi = sizeof(void*) == 4 ? "i386" : "x86-64";
  for (const std::string& text : {std::string("library      ") + KRL_LIBRARY_PATH + "\n", "ABI          " + abi,
                                  "transitions  " + std::to_string(Library().effects().size()) + " declared\n"}) {
    EXPECT_NE(r.output.find(text), std::string::npos) << text << "\n" << r.output;
  }
}

TEST(Cli, RenderWritesWhatTheNameSays) {
  const std::string dir = FreshFolder("render_formats");
  const struct {
    std::string output;  // "-": standard output, caught in out.bin
    std::string magic;
    size_t at;
  } rows[] = {
      {"x.png", "\x89PNG", 0}, {"x.PNG", "\x89PNG", 0}, {"x.jpg", "\xFF\xD8\xFF", 0}, {"x.jpeg", "\xFF\xD8\xFF", 0},
      {"x.bmp", "BM", 0},      {"x.tga", std::string("\x00\x00\x0A", 3), 0},          {"-", "\x89PNG", 0},
  };
  for (const auto& row : rows) {
    const std::string file = dir + "/" + (row.output == "-" ? "out.bin" : row.output);
    const Outcome r = Krl("render \"Traditional Fade\" --progress 0.5 --size 16x9 -o " +
                          (row.output == "-" ? "- >" + file : file));
    ASSERT_EQ(r.exit, 0) << row.output << "\n" << r.output;
    EXPECT_EQ(ReadFile(file).substr(row.at, row.magic.size()), row.magic) << row.output;
    if (row.output != "-") {
      EXPECT_NE(r.output.find("wrote " + file), std::string::npos) << r.output;
    }
    if (row.output == "-") {
      EXPECT_EQ(r.output, "") << "nothing but the picture on stdout";
    }
  }
  // What stb wrote decodes to the frame (JPEG only nearly).
  EXPECT_EQ(cli::ReadImage(dir + "/out.bin").pixels, Expected("Traditional Fade", 16, 9, 0, 0.5).pixels);
  EXPECT_EQ(cli::ReadImage(dir + "/x.bmp").pixels, Expected("Traditional Fade", 16, 9, 0, 0.5).pixels);
}

TEST(Cli, SaysOnceWhenAValueLiesOutsideZeroToOneAndRendersIt) {
  const std::string png = FreshFolder("render_range") + "/x.png";
  const struct {
    std::string options, said;  // said: empty when nothing is to be said
  } rows[] = {
      {"--progress 0.5", ""},
      {"--progress 1", ""},
      {"--progress NaN", "krl: Progress nan is outside 0..1; the library does not clamp it"},
      {"--progress -0.1", "krl: Progress -0.1 is outside 0..1"},
      {"--progress 2", "krl: Progress 2 is outside 0..1"},
      {"--progress inf", "krl: Progress inf is outside 0..1"},
      {"--progress 0.5 --set Progression=1.5", "krl: Progression 1.5 is outside 0..1; the library does not clamp it"},
      {"--progress 0.5 --curve Progression=0:-1,1:2", "krl: Progression -1 is outside 0..1"},
  };
  for (const auto& row : rows) {
    const Outcome r = Krl("render \"Traditional Fade\" --size 8x6 " + row.options + " -o " + png);
    EXPECT_EQ(r.exit, 0) << row.options << "\n" << r.output;
    EXPECT_TRUE(Exists(png)) << row.options;
    EXPECT_EQ(r.output.find("outside 0..1") != std::string::npos, !row.said.empty()) << row.options << "\n" << r.output;
    if (!row.said.empty()) {
      EXPECT_NE(r.output.find(row.said), std::string::npos) << r.output;
      EXPECT_EQ(r.output.find("outside", r.output.find("outside") + 1), std::string::npos) << "once: " << r.output;
    }
    std::remove(png.c_str());
  }
}

TEST(Cli, SaysWhatIsWrongAndWritesNothing) {
  const std::string dir = FreshFolder("render_errors"), out = dir + "/never.png";
  std::filesystem::create_directories(dir + "/folder");
  const std::string render = "render \"Traditional Fade\" --progress 0.5 -o " + out + " ";
  const std::string notLibrary = dir + "/not_a_library.so";
  WriteFile(notLibrary, "not a shared object\n");
  const struct {
    std::string arguments;
    int exit;
    std::string message;
  } rows[] = {
      {"render Nothing --progress 0.5 -o " + out, 1, "no transition is called \"Nothing\"; there are: "},
      {render + "--set Bogus=1", 1, "has no field \"Bogus\"; its fields are TransType, Progression"},
      {render + "--set TransType=7", 1, "is no item of TransType; its items are 0 \"Image 1 > Image 2\""},
      {render + "--set Progression=fast", 1, "Progression takes a number"},
      {render + "--set Progression", 1, "--set takes KEY=VALUE"},
      {render + "--a /nonexistent/a.png", 1, "cannot read /nonexistent/a.png"},
      {render + "--size 0x10", 2, "--size takes WIDTHxHEIGHT"},
      {"render \"Traditional Fade\" -o " + out, 2, "needs --progress"},
      {"render \"Traditional Fade\" --progress x -o " + out, 2, "--progress takes a number"},
      {"render \"Traditional Fade\" --progress 0.5 -o /nonexistent/dir/out.png", 1,
       "cannot write /nonexistent/dir/out.png: the folder /nonexistent does not exist"},
      {"render \"Traditional Fade\" --progress 0.5 -o " + dir + "/folder/", 1,
       "cannot write " + dir + "/folder/: it is a folder; name a file in it, like " + dir + "/folder/out.png"},
      {"render \"Traditional Fade\" --progress 0.5 -o " + dir + "/folder", 1, "cannot write " + dir + "/folder: it is a folder"},
      {"render \"Traditional Fade\" --progress 0.5 -o " + out + "/x.png", 1, out + " does not exist"},
      {"render \"Traditional Fade\" --progress 0.5 -o " + dir + "/x.xyz", 2, "krl render writes a frame as .png, .jpg"},
      {"render \"Traditonal Fade\" --progress 0.5 -o " + out, 1, "did you mean \"Traditional Fade\"?"},
      {render + "--set Progresion=0.5", 1, "has no field \"Progresion\"; did you mean Progression?"},
      {render + "--frames 3", 2, "krl render takes no --frames (it renders one frame at --progress)"},
      {render + "extra", 2, "\"extra\" is one too many"},
      {"list extra", 2, "krl list takes no name, not \"extra\""},
      {"list --size 8x8", 2, "krl list takes no --size"},
      {"info Wipe --quiet", 2, "krl info takes no --quiet"},
      {"frobnicate", 2, "unknown command \"frobnicate\""},
      {"--library /nonexistent/lib.so list", 1, "cannot load /nonexistent/lib.so"},
      {"--library " + notLibrary + " list", 1, "cannot load " + notLibrary},
      {std::string("--library ") + KRL_TEST_PLUGIN_PATH + " info Fade", 1, "no transition is called \"Fade\"; there are: Kinds"},
      {std::string("--library ") + KRL_GARBLED_PLUGIN_PATH + " list", 1, "declares what the host cannot run"},
      {render + "--curve Progression=0:0,x", 1, "Progression takes points POSITION:VALUE"},
      {render + "--curve TransType=0:1", 1, "TransType is no curve; the curves of Traditional Fade are Progression"},
  };
  for (const auto& row : rows) {
    const Outcome r = Krl(row.arguments);
    EXPECT_EQ(r.exit, row.exit) << row.arguments << "\n" << r.output;
    EXPECT_EQ(r.output.find('\n'), r.output.size() - 1) << "one line: " << r.output;
    if (row.exit == 2) {
      EXPECT_NE(r.output.find("(krl --help shows the commands and options)"), std::string::npos);
    }
    EXPECT_NE(r.output.find(row.message), std::string::npos) << row.arguments << "\n" << r.output;
    EXPECT_FALSE(Exists(out)) << row.arguments;
  }
  EXPECT_TRUE(Leftovers(dir).empty());
}

TEST(Cli, RendersWithTheFieldsAndCurvesGiven) {
  const std::string png = FreshFolder("fields") + "/fields.png";
  const std::vector<std::string> settings{"transition=\"image 2 > image 1\""}, curves{"Progression=0:0,1:0.5"};
  const Outcome r = Krl("render \"Traditional Fade\" --progress 0.5 --size 40x30 --set " + settings[0] + " --curve " +
                    curves[0] + " -o " + png);
  ASSERT_EQ(r.exit, 0) << r.output;
  EXPECT_EQ(cli::ReadImage(png).pixels,
            Expected("Traditional Fade", 40, 30, 0, 0.5, {"TransType=Image 2 > Image 1"}, curves).pixels);
  std::remove(png.c_str());
}

TEST(Cli, ScalesAnInputOfAnotherSizeAndSaysSo) {
  const std::string dir = FreshFolder("scaled"), small = dir + "/small.png", out = dir + "/scaled.png";
  cli::WritePng(emu::SampleClipB(32, 18), small);
  const Outcome r = Krl("render \"Traditional Fade\" --progress 1 --size 64x36 --b " + small + " -o " + out);
  ASSERT_EQ(r.exit, 0) << r.output;
  EXPECT_NE(r.output.find("scaled " + small + " from 32x18 to 64x36"), std::string::npos) << r.output;
  EXPECT_EQ(cli::ReadImage(out).pixels, cli::Scale(cli::ReadImage(small), 64, 36).pixels);
  std::remove(small.c_str());
  std::remove(out.c_str());
}

}  // namespace
}  // namespace krl::test

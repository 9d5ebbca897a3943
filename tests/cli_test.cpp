// krl as a user runs it: what it says of itself and the library, frames
// written in the format their name says and equal to the emulator's, field
// values as users write them (on a plug-in with a field of every kind), and
// for every mistake, in any command, one clear line, a non-zero exit and
// nothing left behind.
#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include "cli/fields.h"
#include "cli/image_io.h"
#include "cli_run.h"
#include "test_support.h"

namespace krl::test {
namespace {

constexpr const char* kFade = "\"Traditional Fade\"";

TEST(Cli, DescribesItselfAndTheLibrary) {
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
    const std::string name = Effect(Library(), path).DisplayName();
    EXPECT_EQ(line.substr(nameColumn, name.size() + 2), name + "  ") << line;
    at += line.size() + 1;
  }
  // The fields start in their column, however wide the widest name makes it.
  const size_t fieldsColumn = list.output.find("FIELDS", header) - header;
  const size_t fadeRow = list.output.find("\nTransitions/Dissolve/Traditional Fade ") + 1;
  EXPECT_EQ(list.output.compare(fadeRow + fieldsColumn, 22, "TransType, Progression"), 0) << list.output;

  const std::string abi = sizeof(void*) == 4 ? "i386" : "x86-64";
  const struct {
    std::string arguments;
    std::vector<std::string> said;
  } rows[] = {
      {"info traditionalfade",
       {"Traditional Fade  (Transitions/Dissolve/Traditional Fade)", "Allows to adjust the fade's progression.",
        "Progression  Alpha     \"Progression\"  -      curve (0, 0) (0.5, 0.5) (1, 1)",
        "items: 0 \"Image 1 > Image 2\""}},
      {"--version",
       {std::string("library      ") + KRL_LIBRARY_PATH + "\n", "ABI          " + abi,
        "transitions  " + std::to_string(Library().effects().size()) + " declared\n"}},
  };
  for (const auto& row : rows) {
    const Outcome r = Krl(row.arguments);
    EXPECT_EQ(r.exit, 0) << row.arguments;
    for (const std::string& text : row.said) {
      EXPECT_NE(r.output.find(text), std::string::npos) << text << "\n" << r.output;
    }
  }
}

// Every output in the format its name says, with what krl says of it; where
// the format keeps every pixel, exactly the emulator's frame.
TEST(Cli, WritesWhatTheNameSays) {
  const std::string dir = FreshFolder("formats");
  const std::string render = std::string("render ") + kFade + " --progress 0.5 ";
  const std::string clip = std::string("clip ") + kFade + " --frames 3 ";
  const struct {
    std::string command;
    std::string output;  // "-name": to standard output, caught in name
    std::string magic;   // within the first 32 bytes
    std::string said;    // "": krl says nothing at all
    bool needsFfmpeg = false;
  } rows[] = {
      {render, "default.png", "\x89PNG", "wrote " + dir + "/default.png"},
      {render + "--size 16x9", "x.PNG", "\x89PNG", "wrote " + dir + "/x.PNG"},
      {render + "--size 16x9", "x.jpg", "\xFF\xD8\xFF", "wrote"},
      {render + "--size 16x9", "x.bmp", "BM", "wrote"},
      {render + "--size 16x9", "x.tga", std::string("\x00\x00\x0A", 3), "wrote"},
      {render + "--size 16x9", "-render.png", "\x89PNG", ""},
      {render + "--size 16x9 --set transition=\"image 2 > image 1\" --curve Progression=0:0,1:0.5", "fields.png",
       "\x89PNG", "wrote"},
      {clip + "--size 24x14", "100%.mp4", "ftyp", "wrote " + dir + "/100%.mp4: 3 frames of Traditional Fade at 24x14",
       true},
      {clip + "--size 21x11", "odd.mp4", "ftyp",
       "krl: " + dir + "/odd.mp4 is 22x12, not 21x11: its video format needs an even width and height, so krl adds a "
       "black column at the right and row at the bottom", true},
      {clip + "--size 21x11", "odd.gif", "GIF8", "at 21x11, 25 fps", true},
      {clip + "--size 21x11", "-clip.y4m", "YUV4MPEG2 W21 H11 ",
       "wrote standard output (Y4M): 3 frames of Traditional Fade at 21x11"},
  };
  for (const auto& row : rows) {
    if (row.needsFfmpeg && !HaveFfmpeg()) continue;
    const bool toStandardOutput = row.output[0] == '-';
    const std::string file = dir + "/" + row.output.substr(toStandardOutput);
    const Outcome r = Krl(row.command + " -o " + (toStandardOutput ? "- >" + file : file));
    ASSERT_EQ(r.exit, 0) << row.output << "\n" << r.output;
    if (row.said.empty()) {
      EXPECT_EQ(r.output, "") << "nothing but the picture on standard output";
    }
    EXPECT_NE(r.output.find(row.said), std::string::npos) << row.output << "\n" << r.output;
    const std::string bytes = ReadFile(file);
    EXPECT_NE(bytes.substr(0, 32).find(row.magic), std::string::npos) << row.output << ": " << bytes.substr(0, 12);
  }
  const emu::Frame byDefault = cli::ReadImage(dir + "/default.png");
  EXPECT_EQ(byDefault.pixels, Expected("Traditional Fade", byDefault.width, byDefault.height, 0, 0.5).pixels);
  for (const char* file : {"/x.PNG", "/x.bmp", "/x.tga", "/render.png"}) {
    EXPECT_EQ(cli::ReadImage(dir + file).pixels, Expected("Traditional Fade", 16, 9, 0, 0.5).pixels) << file;
  }
  EXPECT_EQ(cli::ReadImage(dir + "/fields.png").pixels,
            Expected("Traditional Fade", 16, 9, 0, 0.5, {"TransType=Image 2 > Image 1"}, {"Progression=0:0,1:0.5"})
                .pixels);
  EXPECT_TRUE(Leftovers(dir).empty());
}

TEST(Cli, SaysOnceWhenAValueLiesOutsideZeroToOneAndRendersIt) {
  const std::string png = FreshFolder("render_range") + "/x.png";
  const struct {
    std::string options, said;  // said: empty when nothing is to be said
  } rows[] = {
      {"--progress 1", ""},
      {"--progress NaN", "krl: Progress nan is outside 0..1; the library does not clamp it"},
      {"--progress -0.1", "krl: Progress -0.1 is outside 0..1"},
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

TEST(Cli, SaysWhatIsWrongAndLeavesNothingBehind) {
  const std::string dir = FreshFolder("errors");
  std::filesystem::create_directories(dir + "/folder");
  const std::string text = dir + "/text", textPng = dir + "/text.png", textMp4 = dir + "/text.mp4";
  for (const std::string& f : {text, textPng, textMp4}) WriteFile(f, "no picture here\n");
  const std::string sound = dir + "/sound.wav";
  if (HaveFfmpeg()) Shell("ffmpeg -nostdin -v error -f lavfi -i sine=duration=0.2 -y " + sound);
  // krl is held to 1.5 GiB of addresses; not an i386 one that runs under the
  // user-mode emulator (scripts/i386-runner.sh), which reserves more than that
  // for itself, and in whose 32-bit addresses such frames do not fit anyway.
  const bool emulated = sizeof(void*) == 4 && access("/proc/sys/fs/binfmt_misc/krl-i386", F_OK) == 0;
  const std::string kMemoryLimit = emulated ? "" : "ulimit -v 1500000;";
  const std::string render = std::string("render ") + kFade + " --progress 0.5 ";
  const std::string clip = std::string("clip ") + kFade + " --frames 3 --size 16x9 ";
  // Writes three frames before it fails.
  const std::string refuses = std::string("clip Refuses --frames 5 --size 16x9 --library ") + KRL_REFUSING_PLUGIN_PATH;
  const struct {
    std::string arguments;
    std::string output;  // "": no -o
    int exit;
    std::string message;
    std::string environment = "";
    bool needsFfmpeg = false;
  } rows[] = {
      {"render Nothing --progress 0.5", "out.png", 1, "no transition is called \"Nothing\"; there are: "},
      {"render \"Traditonal Fade\" --progress 0.5", "out.png", 1, "did you mean \"Traditional Fade\"?"},
      {render + "--set Progresion=0.5", "out.png", 1, "has no field \"Progresion\"; did you mean Progression?"},
      {render + "--size 0x10", "out.png", 2, "--size takes WIDTHxHEIGHT"},
      {std::string("render ") + kFade, "out.png", 2, "needs --progress"},
      {render, "/nonexistent/dir/out.png", 1,
       "cannot write /nonexistent/dir/out.png: the folder /nonexistent does not exist"},
      {render, "folder/", 1,
       "cannot write " + dir + "/folder/: it is a folder; name a file in it, like " + dir + "/folder/out.png"},
      {render, "folder", 1, "cannot write " + dir + "/folder: it is a folder"},
      {render, "x.xyz", 2, "krl render writes a frame as .png, .jpg"},
      {render + "--frames 3", "out.png", 2, "krl render takes no --frames (it renders one frame at --progress)"},
      {"list extra", "", 2, "krl list takes no name, not \"extra\""},
      {"frobnicate", "", 2, "unknown command \"frobnicate\""},
      {"--library /nonexistent/lib.so list", "", 1, "cannot load /nonexistent/lib.so"},
      {std::string("--library ") + KRL_GARBLED_PLUGIN_PATH + " list", "", 1, "declares what the host cannot run"},
      {std::string("clip ") + kFade, "out.y4m", 2, "krl clip needs --frames N"},
      {clip + "--frames 1", "out.y4m", 2, "--frames takes a whole number from 2 to 100000, not \"1\""},
      {clip, "out.png", 2, "name it with a frame number, like frames/%04d.png"},
      {clip, "f/%d-%d.png", 2, "one frame number in its file name"},
      {clip + "--a /nonexistent/a.png", "out.y4m", 1, "cannot read /nonexistent/a.png: No such file"},
      {clip + "--a " + textPng, "out.y4m", 1, "cannot read " + textPng + ": "},
      {clip + "--a " + textMp4, "out.y4m", 1, "cannot read " + textMp4 + ": ", "", true},
      {clip + "--a " + sound, "out.y4m", 1, "cannot read " + sound + ": it holds no video", "", true},
      {clip, "text/out.y4m", 1, "cannot write " + dir + "/text/out.y4m: " + text + " is a file, not a folder"},
      {clip, "z.xyz", 1, "cannot write " + dir + "/z.xyz: ffmpeg knows no format by the extension .xyz", "", true},
      {clip + "--size 16384x16384", "out.y4m", 1,
       "not enough memory for frames of this size (16384x16384, 1024 MiB a frame); name a smaller --size",
       kMemoryLimit},
      {clip, "out.mp4", 1, "to write " + dir + "/out.mp4 krl needs the ffmpeg program, which is not installed",
       "PATH=/nonexistent"},
      {clip, "out.webm", 1, "writes PNG sequences (frames/%04d.png) and Y4M (.y4m)", "PATH=/nonexistent"},
      {refuses, "out.y4m", 1, "Refuses refused the frame at Progress 0.75: Past the middle"},
      {refuses, "f/%04d.png", 1, "Refuses refused the frame at Progress 0.75: Past the middle"},
  };
  for (const auto& row : rows) {
    if (row.needsFfmpeg && !HaveFfmpeg()) continue;
#ifdef KRL_SANITIZED
    // A sanitizer's runtime reserves more address space than the limit allows.
    if (!kMemoryLimit.empty() && row.environment == kMemoryLimit) continue;
#endif
    const std::string out = row.output[0] == '/' ? row.output : dir + "/" + row.output;
    const Outcome r = Krl(row.arguments + (row.output.empty() ? "" : " -o " + out), row.environment);
    EXPECT_EQ(r.exit, row.exit) << row.arguments << "\n" << r.output;
    EXPECT_NE(r.output.find(row.message), std::string::npos) << row.arguments << "\n" << r.output;
    EXPECT_EQ(r.output.find('\n'), r.output.size() - 1) << "one line: " << r.output;
    EXPECT_EQ(r.output.find("(krl --help shows the commands and options)") != std::string::npos, row.exit == 2);
    EXPECT_EQ(r.output.find(".krl-partial"), std::string::npos) << "no hidden name: " << r.output;
    EXPECT_EQ(Exists(out), row.output.empty() || row.output.rfind("folder", 0) == 0) << row.arguments;
    EXPECT_FALSE(Exists(dir + "/f")) << row.arguments;
  }
  EXPECT_TRUE(Leftovers(dir).empty());
}

TEST(Cli, ScalesAnInputOfAnotherSizeAndSaysSo) {
  const std::string dir = FreshFolder("scaled"), small = dir + "/small.png", out = dir + "/scaled.png";
  cli::WritePng(emu::SampleClipB(32, 18), small);
  const Outcome r = Krl("render \"Traditional Fade\" --progress 1 --size 64x36 --b " + small + " -o " + out);
  ASSERT_EQ(r.exit, 0) << r.output;
  EXPECT_NE(r.output.find("scaled " + small + " from 32x18 to 64x36"), std::string::npos) << r.output;
  EXPECT_EQ(cli::ReadImage(out).pixels, cli::Scale(cli::ReadImage(small), 64, 36).pixels);
}

TEST(CliFields, TakeWhatUsersWrite) {
  const auto host = LoadFresh(KRL_TEST_PLUGIN_PATH);
  const struct {
    bool curve;  // --curve rather than --set
    const char* setting;
    const char* key;
    const char* value;  // the value afterwards, or a part of the error
  } rows[] = {
      {false, "count (1..8)=2", "Count", "2"},
      {false, "Count=9", "", "Count takes 1 to 8, not 9"},
      {false, "Count=2.5", "", "Count takes a whole number, not \"2.5\""},
      {false, "Mode=minus ONE", "Mode", "-1 \"Minus one\""},
      {false, "Mode=10", "Mode", "10 \"Ten\""},
      {false, "Mode=3", "", "\"3\" is no item of Mode; its items are 10 \"Ten\", -1 \"Minus one\""},
      {false, "Flag=ON", "Flag", "on"},
      {false, "Flag=maybe", "", "Flag is on or off, not \"maybe\""},
      {false, "Tint=#FF2000", "Tint", "#FF2000"},
      {false, "Tint=1,2,3", "Tint", "#010203"},
      {false, "Tint=256,0,0", "", "Tint is a colour: write #RRGGBB, #RGB or r,g,b, not \"256,0,0\""},
      {false, "Tint=#1a2", "Tint", "#11AA22"},
      {false, "Tint=#12g", "", "Tint is a colour: write #RRGGBB, #RGB or r,g,b"},
      {false, "Amount=1.5", "Amount", "curve (0, 1.5)"},
      {false, "Weight=x", "", "Weight takes a number, not \"x\""},
      {false, "Cuont=1", "", "Kinds has no field \"Cuont\"; did you mean Count? its fields are TransType"},
      {false, "InputA=1", "", "has no field \"InputA\""},
      {true, "Amount=1:1,0:0.5", "Amount", "curve (0, 0.5) (1, 1)"},
      {true, "weight=0:0,0.5:1,1:0", "Weight", "curve (0, 0) (0.5, 1) (1, 0)"},
      {true, "Flag=0:1", "", "Flag is no curve; the curves of Kinds are Amount, Weight"},
      {true, "Amount=0:1,", "", "Amount takes points POSITION:VALUE separated by commas"},
      {true, "Amount", "", "--curve takes KEY=VALUE"},
  };
  for (const auto& row : rows) {
    emu::Instance instance(*host, Effect(*host, "Kinds"));
    try {
      row.curve ? cli::ApplyCurve(instance, row.setting) : cli::ApplySetting(instance, row.setting);
      ASSERT_NE(*row.key, '\0') << row.setting << " was taken";
      EXPECT_EQ(cli::FieldValueText(instance, *instance.effect().Field(row.key)), row.value) << row.setting;
    } catch (const std::runtime_error& e) {
      EXPECT_EQ(*row.key, '\0') << row.setting << ": " << e.what();
      EXPECT_NE(std::string(e.what()).find(row.value), std::string::npos) << row.setting << ": " << e.what();
    }
  }
}

}  // namespace
}  // namespace krl::test

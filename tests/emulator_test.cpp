// The host emulator itself, so that tests built on it can be trusted: curves,
// the instance lifecycle, the calls it reports as wrong, its declaration-script
// interpreter (what it accepts, and that every statement it cannot run is
// reported with its text); and the records and the callback table, a binary
// contract: each member must sit at its byte offset, checked through the raw bytes.
#include <gtest/gtest.h>

#include <dlfcn.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

#include "emulator/script.h"
#include "host/host_interface.h"
#include "test_support.h"

namespace krl::test {
namespace {

TEST(Emulator, CurvesAreStraightBetweenPointsAndFlatBeyond) {
  const std::vector<emu::CurvePoint> fade = {{0.0, 0.0}, {0.5, 0.5}, {1.0, 1.0}};
  const std::vector<emu::CurvePoint> bump = {{0.2, 1.0}, {0.4, 3.0}, {0.4, -1.0}, {0.8, 0.0}};
  const struct {
    const std::vector<emu::CurvePoint>* points;
    double position, value;
  } rows[] = {
      {&fade, 0.25, 0.25}, {&fade, 0.75, 0.75}, {&fade, -1.0, 0.0}, {&fade, 2.0, 1.0},
      {&bump, 0.0, 1.0},   {&bump, 0.3, 2.0},   {&bump, 0.4, -1.0}, {&bump, 0.6, -0.5}, {&bump, 0.9, 0.0},
  };
  for (const auto& row : rows) EXPECT_DOUBLE_EQ(emu::EvaluateCurve(*row.points, row.position), row.value) << row.position;
  EXPECT_EQ(emu::EvaluateCurve({}, 0.5), 0.0);
  EXPECT_TRUE(std::isnan(emu::EvaluateCurve(fade, std::numeric_limits<double>::quiet_NaN())));
}

TEST(Emulator, InstanceRunsInitRenderAndTheUserDataDeleter) {
  const auto host = LoadFresh(KRL_TEST_PLUGIN_PATH);
  const emu::DeclaredEffect& e = Effect(*host, "Kinds");
  {
    emu::Instance instance(*host, e);
    EXPECT_EQ(instance.initResult(), 1);
    EXPECT_EQ(instance.Value("Mode"), 10);
    EXPECT_EQ(instance.Value("Count"), 3);
    EXPECT_EQ(instance.Value("Flag"), 1);
    const KrColor tint = instance.Color("Tint");
    EXPECT_EQ((std::vector<int>{tint.Blue, tint.Green, tint.Red, tint.Alpha}), (std::vector<int>{170, 171, 172, 255}));
    ASSERT_EQ(instance.Curve("Amount").size(), 1u);
    EXPECT_EQ(instance.Curve("Amount")[0].value, 0.125);
    ASSERT_NE(instance.userData(), nullptr);

    const emu::Frame a = emu::SampleClipA(8, 4), b = emu::SampleClipB(8, 4);
    emu::Frame out(8, 4);
    for (int i = 0; i < 3; ++i) ASSERT_EQ(instance.Render(a, b, out, 0.5), 1);
    EXPECT_EQ(out.pixels, a.pixels);
    const int32_t* renders = *static_cast<int32_t* const*>(instance.userData());
    EXPECT_EQ(*renders, 3);
    EXPECT_TRUE(instance.diagnostics().empty());
  }  // the deleter frees the user data here; the leak checks see it
}

TEST(Emulator, ReportsCallsWithWrongFieldsAndUnusedSlotsAndAnswersFieldZero) {
  const emu::Host& host = Library();
  emu::Instance fade(host, Effect(host, "Traditional Fade"));
  auto* ri = const_cast<t_KrRenderInfo*>(&fade.record());
  const int32_t progression = fade.effect().Field("Progression")->index;
  host.table().GetFieldValue(ri, 12345, 0);
  host.table().GetFieldValue(ri, progression, 0);  // a curve read as a value
  KrColor color{};
  host.table().GetColorValue(ri, progression, 0, &color, 0.0);
  ASSERT_EQ(fade.diagnostics().size(), 3u);
  EXPECT_NE(fade.diagnostics()[0].find("12345"), std::string::npos);
  EXPECT_NE(fade.diagnostics()[1].find("\"Progression\" of kind Alpha"), std::string::npos);

  // An index no statement assigned stays 0; the host keeps a value for its
  // field 0 and answers with it, and the emulator lists such calls apart.
  host.table().SetFieldDefault(ri, 0, 0, 3);
  EXPECT_EQ(host.table().GetFieldValue(ri, 0, 0), 3);
  EXPECT_EQ(fade.diagnostics().size(), 3u);
  EXPECT_EQ(fade.fieldZeroCalls(), (std::vector<std::string>{"SetFieldDefault(field 0)", "GetFieldValue(field 0)"}));
  EXPECT_EQ(fade.defaultsSet().back(), "SetFieldDefault(field 0, 3)");

  const int before = emu::UnexpectedSlotCalls();
  reinterpret_cast<const KrUnusedSlot*>(&host.table())[3]();
  EXPECT_EQ(emu::UnexpectedSlotCalls(), before + 1);
}

TEST(Emulator, FindsEffectsByAnyNameInLibrariesThatDeclare) {
  const emu::Host& host = Library();
  for (const char* name : {"Traditional Fade", "traditionalfade", "Transitions/Dissolve/Traditional Fade",
                           "Traditional Fade (ZE plug-in SDK effect)"}) {
    ASSERT_NE(host.FindEffect(name), nullptr) << name;
    EXPECT_EQ(host.FindEffect(name)->name, "Transitions/Dissolve/Traditional Fade");
  }
  EXPECT_EQ(host.FindEffect("Fade"), nullptr);
  // The C library loads, but declares nothing.
  Dl_info libc{};
  ASSERT_NE(dladdr(reinterpret_cast<void*>(&std::strlen), &libc), 0);
  std::string error;
  EXPECT_EQ(emu::Host::Load(libc.dli_fname, &error), nullptr);
  EXPECT_NE(error.find("has no KrDeclare: it is not a transitions library"), std::string::npos) << error;
}

constexpr bool kI386 = sizeof(void*) == 4;

template <typename T>
T ReadAt(const void* record, size_t offset) {
  T value;
  std::memcpy(&value, static_cast<const uint8_t*>(record) + offset, sizeof value);
  return value;
}

TEST(RecordLayout, RenderInfoMembersSitAtTheirOffsets) {
  t_KrRenderInfo ri{};
  uint8_t a = 0, b = 0, out = 0;
  ri.Host = reinterpret_cast<t_KrHostFunctions*>(0x1234);
  ri.Progress = 0.625;
  ri.Width = 720;
  ri.Height = 576;
  ri.BitsPerPixel = 32;
  ri.InputA = &a;
  ri.InputB = &b;
  ri.Output = &out;
  struct Row {
    const char* member;
    size_t i386, x64;
    bool pointer;  // else a 32-bit integer
    uintptr_t expected;
  };
  const Row rows[] = {
      {"Host", 8, 8, true, 0x1234},
      {"Width", 44, 48, false, 720},
      {"Height", 48, 52, false, 576},
      {"BitsPerPixel", 68, 72, false, 32},
      {"InputA", 76, 80, true, reinterpret_cast<uintptr_t>(&a)},
      {"InputB", 80, 88, true, reinterpret_cast<uintptr_t>(&b)},
      {"Output", 84, 96, true, reinterpret_cast<uintptr_t>(&out)},
  };
  for (const Row& row : rows) {
    const size_t offset = kI386 ? row.i386 : row.x64;
    const uintptr_t seen =
        row.pointer ? ReadAt<uintptr_t>(&ri, offset) : static_cast<uintptr_t>(ReadAt<int32_t>(&ri, offset));
    EXPECT_EQ(seen, row.expected) << row.member;
  }
  EXPECT_EQ(ReadAt<double>(&ri, kI386 ? 28 : 32), 0.625);
  t_KrHostInfo hi{};
  hi.Host = ri.Host;
  EXPECT_EQ(ReadAt<uintptr_t>(&hi, 8), 0x1234u);
}

// The emulator's table, read as raw slots: each used slot holds its function.
TEST(RecordLayout, CallbackSlotsSitAtSlotTimesPointerSize) {
  const t_KrHostFunctions& table = Library().table();
  const auto at = [](auto function) { return reinterpret_cast<const void*>(function); };
  const struct {
    int slot;
    const void* function;
  } rows[] = {
      {2, at(table.ReportError)},     {24, at(table.ScriptExecute)},   {25, at(table.ScriptExecuteHi)},
      {27, at(table.GetCurveValue)},  {28, at(table.AddCurvePoint)},   {30, at(table.GetColorValue)},
      {31, at(table.SetColorDefault)}, {34, at(table.GetFieldValue)},  {35, at(table.SetFieldDefault)},
      {78, at(table.SetUserData)},    {79, at(table.GetUserData)},     {81, at(table.Translate)},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(ReadAt<const void*>(&table, row.slot * sizeof(void*)), row.function) << "slot " << row.slot;
    EXPECT_NE(row.function, nullptr) << "slot " << row.slot;
  }
  // Every other slot holds a function too: the host's table has no holes.
  for (int slot = 0; slot < KR_HOST_SLOT_COUNT; ++slot) {
    EXPECT_NE(ReadAt<const void*>(&table, slot * sizeof(void*)), nullptr) << "slot " << slot;
  }
}

// Texts at 0x1000..0x1003, writable variables at 0x5000..0x50FF, code at 0x9000..
class FakeEnvironment : public emu::ScriptEnvironment {
 public:
  const emu::TranslatedText* FindText(uint64_t address) const override {
    static const emu::TranslatedText kText{"Text", "Text", "Context"};
    return address >= 0x1000 && address < 0x1004 ? &kText : nullptr;
  }
  bool StoreFieldIndex(uint64_t address, int32_t, std::string* why) override {
    *why = "not writable";
    return address >= 0x5000 && address <= 0x50FC;
  }
  bool IsCode(uint64_t address) const override { return address >= 0x9000 && address < 0xA000; }
  int32_t NextFieldIndex() override { return next++; }
  int32_t next = 500;
};

const char* const kHeader[] = {
    "KrEffect obj; obj.Name = \"Menu/Effect\"; obj.Sign = \"Sign\"; obj.Version = 0x1;",
    "obj.Type = \"Transition\";",
    "obj.DescriptionW = (word *)0x1000;",
    "obj.InitFunction = 0x9010;",
    "obj.RenderVideoFunctionRT = 0x9020;",
};

// Every statement it cannot run is reported once, quoting the statement
// (shortened when overlong), whether it is malformed or contradicts the ones
// run before it.
TEST(Script, ReportsEveryStatementItCannotRun) {
  const std::vector<std::string> nothing, begun{"KrEffect obj;"};
  std::vector<std::string> selector(std::begin(kHeader), std::end(kHeader));
  selector.push_back("*((int *)0x5000) = KrDataFieldAdd( &obj.df, \"Selector\", \"S\", (word *)0x1001, KrdfNone );");
  selector.push_back("DataFieldSelItemAddById( &obj.df, 500, (word *)0x1003, 0x2 );");
  const struct {
    const std::vector<std::string>& before;
    std::string statement;
    const char* reason;
  } rows[] = {
      {nothing, "obj.Name = \"x\";", "no effect is being declared"},
      {nothing, "KrEffect obj; obj.Name = \"Menu/Other\"", "ends early"},
      {nothing, "KrEffect obj; obj.Colour = 0x1;", "no member 'Colour'"},
      {nothing, "KrEffect obj; obj.Version = 0x100000000;", "wider than 32 bits"},
      {nothing, "KrEffect obj; obj.Name = `x`;", "unexpected character '`'"},
      {nothing, "KrEffect obj; obj.Name = \"" + std::string(100000, 'x'), "unterminated string"},
      {nothing, "", "empty statement"},
      {begun, "obj.DescriptionW = (word *)0x2000;", "not a text the host translated"},
      {begun, "obj.InitFunction = 0x5000;", "not in the library's code"},
      {begun, "*((int *)0x7000) = KrDataFieldAdd( &obj.df, \"Bool\", \"B\", (word *)0x1001, KrdfNone );",
       "not writable"},
      {begun, "*((int *)0x5000) = KrDataFieldAdd( &obj.df, \"Float\", \"B\", (word *)0x1001, KrdfNone );",
       "unknown field kind \"Float\""},
      {begun, "*((int *)0x5000) = KrDataFieldAdd( &obj.df, \"Bool\", \"B\", (word *)0x1001, KrdfSometimes );",
       "unknown flag 'KrdfSometimes'"},
      {begun, "*((int *)0x5000) = KrDataFieldAdd( &obj.df, \"Long\", \"B\", (word *)0x1001, KrdfNone );",
       "expected a number"},
      {begun, "KrDataFieldHelpbyId( &obj.df, 99, (word *)0x1002 );", "no field of this effect has the index 99"},
      {begun, "EffectAdd( obj );", "the effect has no Name"},
      {begun, "Launch( obj );", "unknown statement 'Launch'"},
      {selector, selector[5], "already has a field \"S\""},
      {selector, selector[6], "has an item of value 2 already"},
      {selector, "KrEffect obj;", "a new effect begins before EffectAdd"},
  };
  for (const auto& row : rows) {
    FakeEnvironment env;
    emu::ScriptInterpreter script(env);
    for (const std::string& s : row.before) ASSERT_TRUE(script.Execute(s)) << script.errors().back();
    EXPECT_FALSE(script.Execute(row.statement)) << row.statement;
    ASSERT_EQ(script.errors().size(), 1u) << row.statement;
    const std::string& report = script.errors()[0];
    EXPECT_NE(report.find(row.reason), std::string::npos) << report;
    if (row.statement.size() > 1000) {
      EXPECT_LT(report.size(), 1000u);
    } else {
      const std::string tail = row.statement.substr(row.statement.size() - std::min<size_t>(12, row.statement.size()));
      EXPECT_NE(report.find(tail), std::string::npos) << "the report quotes the statement: " << report;
    }
  }
}

}  // namespace
}  // namespace krl::test

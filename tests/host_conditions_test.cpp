// The library under the conditions real hosts create (emulator/host_conditions.h):
// every declared transition's golden cases, rendered under each condition,
// must give exactly the golden digests; every declaration exactly the golden
// statements and defaults; and every call must give the host its control
// words back as it left them. A transition joins by being declared.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>

#include "cli_run.h"
#include "emulator/host_conditions.h"
#include "emulator/test_profile.h"
#include "golden_cases.h"
#include "host/exports.h"
#include "test_support.h"

namespace krl::test {
namespace {

using emu::HostConditions;

constexpr size_t kSmallStack = 256 * 1024;

struct Row {
  const char* id;
  HostConditions conditions;
};

void PrintTo(const Row& row, std::ostream* os) { *os << row.conditions.name; }

const Row kRows[] = {
    {"StackMisalignedBy4", {.name = "stack misaligned by 4", .stackMisalignment = 4}},
    {"StackMisalignedBy8", {.name = "stack misaligned by 8", .stackMisalignment = 8}},
    {"X87Precision24", {.name = "x87 24-bit precision", .x87Control = 0x007F}},
    {"X87TowardZero", {.name = "x87 rounding toward zero", .x87Control = 0x0F7F}},
    {"X87Downward", {.name = "x87 rounding downward", .x87Control = 0x077F}},
    {"X87Unmasked", {.name = "x87 invalid, zero divide, overflow unmasked", .x87Control = 0x0372}},
    {"MxcsrFlushToZero", {.name = "MXCSR flush to zero, denormals are zero", .mxcsr = 0x9FC0}},
    {"MxcsrTowardZero", {.name = "MXCSR rounding toward zero", .mxcsr = 0x7F80}},
    {"MxcsrDownward", {.name = "MXCSR rounding downward", .mxcsr = 0x3F80}},
    {"MxcsrUnmasked", {.name = "MXCSR invalid, zero divide, overflow unmasked", .mxcsr = 0x1980}},
    {"FramesAtOffset1", {.name = "frames 1 byte past a boundary", .frameOffset = 1}},
    {"FramesAtOffset2", {.name = "frames 2 bytes past a boundary", .frameOffset = 2}},
    {"FramesAtOffset3", {.name = "frames 3 bytes past a boundary", .frameOffset = 3}},
    {"SmallStack", {.name = "a thread with a 256 KiB stack", .stackSize = kSmallStack}},
    {"AllAtOnce",
     {.name = "all at once: x87 24-bit toward zero unmasked, MXCSR toward zero FTZ DAZ unmasked, stack off by 4, "
              "frames off by 3, a 256 KiB stack",
      .x87Control = 0x0C72, .mxcsr = 0xF9C0, .stackMisalignment = 4, .stackSize = kSmallStack, .frameOffset = 3}},
};

// Every declaration function the library exports, from the effect list.
#define KR_DECLARATION_NAME(name) "KrDeclare" #name,
const char* const kDeclarationFunctions[] = {KR_EFFECTS(KR_DECLARATION_NAME)};
#undef KR_DECLARATION_NAME

void ExpectWordsGivenBack(const char* what) {
  for (const std::string& v : emu::TakeConditionViolations()) ADD_FAILURE() << what << ": " << v;
}

class HostConditionsTest : public testing::TestWithParam<Row> {
 protected:
  void SetUp() override {
#ifdef KRL_THREAD_SANITIZED
    // ThreadSanitizer's runtime needs more than a small host stack of its own.
    if (GetParam().conditions.stackSize != 0) GTEST_SKIP() << "a small stack under ThreadSanitizer";
#endif
  }
};

TEST_P(HostConditionsTest, DeclarationsStandAsRecorded) {
  const std::string golden = ReadFile(std::string(KRL_GOLDEN_DIR) + "/declarations.txt");
  const emu::ScopedHostConditions scope(GetParam().conditions);
  // Each declaration function called by the host on its own...
  for (const char* function : kDeclarationFunctions) {
    std::unique_ptr<emu::Host> host = LoadFresh(KRL_LIBRARY_PATH);
    EXPECT_EQ(host->Declare(function), 1) << function;
    std::string text = DeclarationsText(*host);
    text.erase(0, text.find("\n== "));
    EXPECT_NE(golden.find(text), std::string::npos) << function << " declares otherwise:\n" << text;
    ExpectWordsGivenBack(function);
  }
  // ...and all of them through KrDeclare (which also puts back the host
  // indices every other test of this process expects).
  std::unique_ptr<emu::Host> host = LoadFresh(KRL_LIBRARY_PATH);
  EXPECT_TRUE(DeclarationsText(*host) == golden) << "KrDeclare declares otherwise than declarations.txt";
  ExpectWordsGivenBack("KrDeclare");
}

TEST_P(HostConditionsTest, EveryGoldenFrameComesOutAsRecorded) {
  const std::map<std::string, std::string> recorded = RecordedGolden("frames.txt");
  const emu::ScopedHostConditions scope(GetParam().conditions);
  int wrong = 0;
  for (const GoldenCase& c : GoldenCases(Library())) {
    auto it = recorded.find(c.Id());
    if (it == recorded.end()) {
      ADD_FAILURE() << c.Id() << " has no recorded digest";
      continue;
    }
    const std::string rendered = RenderGolden(Library(), c);
    if (rendered != it->second && ++wrong <= 10) {
      ADD_FAILURE() << c.Id() << ": " << rendered << " instead of " << it->second;
    }
    ExpectWordsGivenBack(c.Id().c_str());
  }
  EXPECT_EQ(wrong, 0) << "frames that differ under \"" << GetParam().conditions.name << "\"";
}

// 1920 x 1080 and the fuzzer's largest frame, on a small stack, compared
// with the same frames rendered as we build them.
TEST(HostConditions, LargeFramesOnASmallStackComeOutAsWithoutIt) {
#ifdef KRL_THREAD_SANITIZED
  GTEST_SKIP() << "a small stack under ThreadSanitizer";
#endif
  const HostConditions conditions{.name = "a thread with a 256 KiB stack", .stackSize = kSmallStack};
  emu::TakeDeepestStackUse();
  for (const emu::DeclaredEffect& e : Library().effects()) {
    std::vector<std::vector<std::string>> settings = {{}};
    if (!emu::ProfileOf(e).heavier.empty()) settings.push_back(emu::ProfileOf(e).heavier);
    for (const auto& [w, h] : {std::pair{1920, 1080}, {300, 300}}) {
      for (const std::vector<std::string>& s : settings) {
        const GoldenCase c{&e, w, h, 0.37, s};
        const std::string plain = RenderGolden(Library(), c);
        const emu::ScopedHostConditions scope(conditions);
        EXPECT_EQ(RenderGolden(Library(), c), plain) << c.Id();
        ExpectWordsGivenBack(c.Id().c_str());
      }
    }
  }
  const size_t deepest = emu::TakeDeepestStackUse();
  RecordProperty("deepest_stack_use", std::to_string(deepest));
  std::printf("deepest stack use of a render: %zu bytes of %zu\n", deepest, conditions.stackSize);
}

// The exported printf-style helpers: the same text whatever the host's
// rounding, the host's words given back.
TEST_P(HostConditionsTest, ScriptHelpersFormatAsUsual) {
  static std::string sent;
  t_KrHostFunctions table{};
  table.ScriptExecute = [](t_KrHostInfo*, const char* statement) { return sent = statement, 7; };
  table.ScriptExecuteHi = [](t_KrHostInfo*, t_KrHostInfo*, const char* statement) { return sent = statement, 8; };
  t_KrHostInfo hi{0, 0, &table};
  const char* format = "%f %.3f %d %s 0x%X %g";
  const HostConditions& conditions = GetParam().conditions;
  // KrDebug (which returns nothing) takes two numbers before its format.
  for (const auto& [name, result] : {std::pair{"KrScriptExecuteHi", 8}, {"KrScriptExecute", 7}, {"KrDebug", 0}}) {
    const void* function = Library().Symbol(name);
    ASSERT_NE(function, nullptr) << name;
    emu::MachineCall call(function);
    if (result == 0) {
      call.Int(1).Int(2);
    } else {
      call.Pointer(&hi);
    }
    call.Pointer(format).Double(2.0 / 3.0).Double(-0.0005).Int(-7).Pointer("text").Int(42).Double(
        std::numeric_limits<double>::denorm_min());
    sent.clear();
    emu::ControlWords after{};
    const int32_t returned = call.Run(conditions, &after);
    if (result != 0) {
      EXPECT_EQ(returned, result) << name;
      EXPECT_EQ(sent, "0.666667 -0.001 -7 text 0x2A 4.94066e-324") << name;
    }
    EXPECT_EQ(emu::WordsNotGivenBack(conditions, after), "") << name;
  }
}

INSTANTIATE_TEST_SUITE_P(Under, HostConditionsTest, testing::ValuesIn(kRows),
                         [](const testing::TestParamInfo<Row>& row) { return std::string(row.param.id); });

// A host whose slots answer oddly: curves NaN, infinite or huge, fields any
// 32-bit value, no user data, no or empty translations. No frame can be
// predicted; nothing may crash or touch memory outside the frames (the
// sanitizer build checks that), and the words come back.
TEST(HostConditions, OddAnswersFromTheHostHarmNothing) {
  std::unique_ptr<emu::Host> host = LoadFresh(KRL_LIBRARY_PATH);
  const emu::ScopedHostConditions scope(
      {.name = "a host that answers oddly, stack off by 8, frames off by 1", .stackMisalignment = 8, .frameOffset = 1,
       .oddAnswers = true});
  const double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();
  for (const emu::DeclaredEffect& e : Library().effects()) {
    emu::Instance instance(Library(), e);
    for (const auto& [w, h] : {std::pair{97, 61}, {1, 1}, {0, 5}, {64, 1}}) {
      const emu::Frame a = emu::SampleClipA(w, h), b = emu::SampleClipB(w, h);
      for (double p : {0.5, nan, -1.0, 2.0, inf, 0.0, 1.0}) {
        emu::Frame out(w, h, 0xFF808080);
        instance.Render(a, b, out, p);
      }
    }
    ExpectWordsGivenBack(e.DisplayName().c_str());
  }
  EXPECT_EQ(host->Declare(), static_cast<int32_t>(std::size(kDeclarationFunctions)));
  ExpectWordsGivenBack("KrDeclare with no translations");
  {
    // Back to the indices every other test of this process expects.
    const emu::ScopedHostConditions plain({});
    host->Declare();
  }
}

}  // namespace
}  // namespace krl::test

// The records and the callback table are a binary contract: each member must
// sit at its byte offset, checked here through the raw bytes.
#include <gtest/gtest.h>

#include <cstring>

#include "host/host_interface.h"
#include "test_support.h"

namespace krl::test {
namespace {

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
  const struct {
    int slot;
    const void* function;
  } rows[] = {
      {2, reinterpret_cast<const void*>(table.ReportError)},
      {24, reinterpret_cast<const void*>(table.ScriptExecute)},
      {25, reinterpret_cast<const void*>(table.ScriptExecuteHi)},
      {27, reinterpret_cast<const void*>(table.GetCurveValue)},
      {28, reinterpret_cast<const void*>(table.AddCurvePoint)},
      {30, reinterpret_cast<const void*>(table.GetColorValue)},
      {31, reinterpret_cast<const void*>(table.SetColorDefault)},
      {34, reinterpret_cast<const void*>(table.GetFieldValue)},
      {35, reinterpret_cast<const void*>(table.SetFieldDefault)},
      {78, reinterpret_cast<const void*>(table.SetUserData)},
      {79, reinterpret_cast<const void*>(table.GetUserData)},
      {81, reinterpret_cast<const void*>(table.Translate)},
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

}  // namespace
}  // namespace krl::test

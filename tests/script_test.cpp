// The emulator's declaration-script interpreter: what it accepts, and that
// every statement it cannot run is reported with its text.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "emulator/script.h"

namespace krl::test {
namespace {

// Texts at 0x1000.., writable variables at 0x5000..0x50FF, code at 0x9000..
class FakeEnvironment : public emu::ScriptEnvironment {
 public:
  const emu::TranslatedText* FindText(uint64_t address) const override {
    auto it = texts.find(address);
    return it == texts.end() ? nullptr : &it->second;
  }
  bool StoreFieldIndex(uint64_t address, int32_t index, std::string* why) override {
    if (address < 0x5000 || address > 0x50FC) {
      *why = "not writable";
      return false;
    }
    stored[address] = index;
    return true;
  }
  bool IsCode(uint64_t address) const override { return address >= 0x9000 && address < 0xA000; }
  int32_t NextFieldIndex() override { return next++; }

  std::map<uint64_t, emu::TranslatedText> texts = {
      {0x1000, {"Beschreibung", "Description", "Ctx"}},
      {0x1001, {"Label", "Label", "Ctx"}},
      {0x1002, {"Help", "Help", "Ctx"}},
      {0x1003, {"Item", "Item", "Ctx"}},
  };
  std::map<uint64_t, int32_t> stored;
  int32_t next = 500;
};

const char* const kHeader[] = {
    "KrEffect obj; obj.Name = \"Menu/Effect\"; obj.Sign = \"Sign\"; obj.Version = 0x1;",
    "obj.Type = \"Transition\";",
    "obj.DescriptionW = (word *)0x1000;",
    "obj.InitFunction = 0x9010;",
    "obj.RenderVideoFunctionRT = 0x9020;",
};

TEST(Script, ReadsAWholeDeclaration) {
  FakeEnvironment env;
  emu::ScriptInterpreter script(env);
  for (const char* s : kHeader) ASSERT_TRUE(script.Execute(s)) << script.errors().back();
  const char* const fields[] = {
      "*((int *)0x5000) = KrDataFieldAdd( &obj.df, \"Input\", \"InputA\", \"Input A\", KrdfNone );",
      "*((int *)0x5004) = KrDataFieldAdd( &obj.df, \"Long\", \"Count\", (word *)0x1001, -1.500000,8.000000, "
      "KrdfMinLimit|KrdfMaxLimit );",
      "KrDataFieldHelpbyId( &obj.df, 501, (word *)0x1002 );",
      "*((int *)0x5008) = KrDataFieldAdd( &obj.df, \"Selector\", \"Mode\", (word *)0x1001, KrdfNone );",
      "DataFieldSelItemAddById( &obj.df, 502, (word *)0x1003, 0xFFFFFFFF );",
      "EffectAdd( obj );",
  };
  for (const char* s : fields) ASSERT_TRUE(script.Execute(s)) << script.errors().back();
  ASSERT_EQ(script.effects().size(), 1u);
  const emu::DeclaredEffect& e = script.effects()[0];
  EXPECT_EQ(e.name, "Menu/Effect");
  EXPECT_EQ(e.description, "Beschreibung");
  EXPECT_EQ(e.initFunction, 0x9010u);
  ASSERT_EQ(e.fields.size(), 3u);
  EXPECT_EQ(e.fields[1].minimum, -1.5);
  EXPECT_EQ(e.fields[1].flags, (std::vector<std::string>{"KrdfMinLimit", "KrdfMaxLimit"}));
  EXPECT_EQ(e.fields[1].help, "Help");
  EXPECT_EQ(e.fields[2].items.at(0).value, -1);
  EXPECT_EQ(env.stored, (std::map<uint64_t, int32_t>{{0x5000, 500}, {0x5004, 501}, {0x5008, 502}}));
}

TEST(Script, ReportsEveryStatementItCannotRun) {
  const struct {
    const char* statement;
    const char* reason;
  } rows[] = {
      {"obj.Name = \"x\";", "no effect is being declared"},
      {"KrEffect obj; obj.Name = \"Menu/Other\"", "ends early"},
      {"KrEffect obj; obj.Colour = 0x1;", "no member 'Colour'"},
      {"KrEffect obj; obj.Version = 0x100000000;", "wider than 32 bits"},
      {"KrEffect obj; obj.Name = \"unterminated;", "unterminated string"},
      {"KrEffect obj; obj.Name = `x`;", "unexpected character '`'"},
      {"obj.DescriptionW = (word *)0x2000;", "not a text the host translated"},
      {"obj.InitFunction = 0x5000;", "not in the library's code"},
      {"*((int *)0x7000) = KrDataFieldAdd( &obj.df, \"Bool\", \"B\", (word *)0x1001, KrdfNone );", "not writable"},
      {"*((int *)0x5000) = KrDataFieldAdd( &obj.df, \"Float\", \"B\", (word *)0x1001, KrdfNone );",
       "unknown field kind \"Float\""},
      {"*((int *)0x5000) = KrDataFieldAdd( &obj.df, \"Bool\", \"B\", (word *)0x1001, KrdfSometimes );",
       "unknown flag 'KrdfSometimes'"},
      {"*((int *)0x5000) = KrDataFieldAdd( &obj.df, \"Long\", \"B\", (word *)0x1001, KrdfNone );",
       "expected a number"},
      {"KrDataFieldHelpbyId( &obj.df, 99, (word *)0x1002 );", "no field of this effect has the index 99"},
      {"KrDataFieldHelpbyId( &obj.df, 1e3, (word *)0x1002 );", "not a 32-bit integer"},
      {"DataFieldSelItemAddById( &obj.df, 99, (word *)0x1003, 0x0 );", "no field"},
      {"EffectAdd( obj );", "the effect has no Name"},
      {"Launch( obj );", "unknown statement 'Launch'"},
      {"", "empty statement"},
  };
  for (const auto& row : rows) {
    FakeEnvironment env;
    emu::ScriptInterpreter script(env);
    if (std::string(row.statement).rfind("KrEffect", 0) != 0 && std::string(row.statement).rfind("obj.Name", 0) != 0) {
      ASSERT_TRUE(script.Execute("KrEffect obj;"));
    }
    EXPECT_FALSE(script.Execute(row.statement)) << row.statement;
    ASSERT_EQ(script.errors().size(), 1u) << row.statement;
    EXPECT_NE(script.errors()[0].find(row.reason), std::string::npos) << script.errors()[0];
    const std::string statement = row.statement;
    const std::string tail = statement.substr(statement.size() - std::min<size_t>(12, statement.size()));
    EXPECT_NE(script.errors()[0].find(tail), std::string::npos)
        << "the report quotes the statement: " << script.errors()[0];
  }
}

TEST(Script, RefusesStatementsThatContradictEarlierOnes) {
  FakeEnvironment env;
  emu::ScriptInterpreter script(env);
  for (const char* s : kHeader) ASSERT_TRUE(script.Execute(s));
  const char* add = "*((int *)0x5000) = KrDataFieldAdd( &obj.df, \"Selector\", \"S\", (word *)0x1001, KrdfNone );";
  ASSERT_TRUE(script.Execute(add));
  EXPECT_FALSE(script.Execute(add));  // the same key twice
  ASSERT_TRUE(script.Execute("DataFieldSelItemAddById( &obj.df, 500, (word *)0x1003, 0x2 );"));
  EXPECT_FALSE(script.Execute("DataFieldSelItemAddById( &obj.df, 500, (word *)0x1003, 0x2 );"));  // same value
  ASSERT_TRUE(script.Execute("KrDataFieldHelpbyId( &obj.df, 500, (word *)0x1002 );"));
  EXPECT_FALSE(script.Execute("KrDataFieldHelpbyId( &obj.df, 500, (word *)0x1002 );"));  // help twice
  EXPECT_FALSE(script.Execute("KrEffect obj;"));  // a new effect before EffectAdd
  EXPECT_EQ(script.errors().size(), 4u);
}

TEST(Script, ShortensOverlongStatementsInItsReport) {
  FakeEnvironment env;
  emu::ScriptInterpreter script(env);
  const std::string unterminated = "KrEffect obj; obj.Name = \"" + std::string(100000, 'x');
  const std::string longName = "KrEffect obj; obj.Name = " + std::string(100000, 'y') + ";";
  for (const std::string& overlong : {unterminated, longName}) {
    EXPECT_FALSE(script.Execute(overlong));
    EXPECT_LT(script.errors().back().size(), 1000u);
  }
  EXPECT_NE(script.errors()[0].find("unterminated string"), std::string::npos);
  EXPECT_NE(script.errors()[1].find("expected a string"), std::string::npos);
}

}  // namespace
}  // namespace krl::test

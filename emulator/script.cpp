#include "emulator/script.h"

#include <cerrno>
#include <cstdlib>
#include <stdexcept>

namespace krl::emu {
namespace {

enum class Tok { Ident, Number, String, Punct };

struct Token {
  Tok type;
  std::string text;  // for strings: the contents without quotes
  size_t begin;      // position in the statement text
};

struct ScriptError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Reports quote statements and tokens; overlong ones are shortened there.
std::string Shortened(const std::string& text) {
  constexpr size_t kMost = 300;
  if (text.size() <= kMost) return text;
  return text.substr(0, kMost) + "... (" + std::to_string(text.size()) + " characters)";
}

std::string Quote(const std::string& statement) { return "\"" + Shortened(statement) + "\""; }

bool IsIdentStart(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_'; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsIdentChar(char c) { return IsIdentStart(c) || IsDigit(c); }

std::vector<Token> Tokenize(const std::string& s) {
  std::vector<Token> out;
  size_t i = 0;
  while (i < s.size()) {
    const char c = s[i];
    if (c == ' ' || c == '\t' || c == '\n' || c == '\r') {
      ++i;
    } else if (IsIdentStart(c)) {
      const size_t b = i;
      while (i < s.size() && IsIdentChar(s[i])) ++i;
      out.push_back({Tok::Ident, s.substr(b, i - b), b});
    } else if (IsDigit(c) || ((c == '-' || c == '.') && i + 1 < s.size() && (IsDigit(s[i + 1]) || s[i + 1] == '.'))) {
      const size_t b = i;
      ++i;
      while (i < s.size() && (IsIdentChar(s[i]) || s[i] == '.' ||
                              ((s[i] == '-' || s[i] == '+') && (s[i - 1] == 'e' || s[i - 1] == 'E')))) {
        ++i;
      }
      out.push_back({Tok::Number, s.substr(b, i - b), b});
    } else if (c == '"') {
      const size_t b = i++;
      std::string text;
      while (i < s.size() && s[i] != '"') {
        if (s[i] == '\\' && i + 1 < s.size()) ++i;
        text += s[i++];
      }
      if (i >= s.size()) throw ScriptError("unterminated string at column " + std::to_string(b + 1));
      ++i;
      out.push_back({Tok::String, text, b});
    } else if (std::string("*();.=&,|").find(c) != std::string::npos) {
      out.push_back({Tok::Punct, std::string(1, c), i});
      ++i;
    } else {
      throw ScriptError("unexpected character '" + std::string(1, c) + "' at column " + std::to_string(i + 1));
    }
  }
  return out;
}

const char* const kKinds[] = {"Input", "Selector", "Long", "FloatA", "Bool", "RGBcolor", "Alpha"};
const char* const kFlags[] = {"KrdfNone", "KrdfMinLimit", "KrdfMaxLimit", "KrdfHideCurve"};

template <typename List>
bool Contains(const List& list, const std::string& word) {
  for (const char* w : list) {
    if (word == w) return true;
  }
  return false;
}

}  // namespace

// Runs the statements of one text, one at a time, against the interpreter.
class StatementRunner {
 public:
  StatementRunner(ScriptInterpreter& in, const std::string& text, std::vector<Token> tokens)
      : in_(in), text_(text), t_(std::move(tokens)) {}

  // Runs every statement; stops at the first that fails and reports it.
  bool Run() {
    while (pos_ < t_.size()) {
      const size_t first = pos_;
      try {
        Statement();
      } catch (const ScriptError& e) {
        in_.errors_.push_back("cannot run statement " + Quote(StatementText(first)) + ": " + Shortened(e.what()));
        return false;
      }
    }
    return true;
  }

 private:
  std::string StatementText(size_t first) const {
    const size_t b = t_[first].begin;
    size_t end = text_.size();
    for (size_t k = first; k < t_.size(); ++k) {
      if (t_[k].type == Tok::Punct && t_[k].text == ";") {
        end = t_[k].begin + 1;
        break;
      }
    }
    return text_.substr(b, end - b);
  }

  [[noreturn]] void Fail(const std::string& why) const { throw ScriptError(why); }

  const Token& Peek() const {
    if (pos_ >= t_.size()) Fail("the statement ends early");
    return t_[pos_];
  }
  const Token& Next() {
    const Token& t = Peek();
    ++pos_;
    return t;
  }
  bool At(Tok type, const char* text) const {
    return pos_ < t_.size() && t_[pos_].type == type && t_[pos_].text == text;
  }
  void Expect(const char* punct) {
    const Token& t = Next();
    if (t.type != Tok::Punct || t.text != punct) Fail(std::string("expected '") + punct + "' but found '" + t.text + "'");
  }
  void ExpectWord(const char* word) {
    const Token& t = Next();
    if (t.type != Tok::Ident || t.text != word) Fail(std::string("expected ") + word + " but found '" + t.text + "'");
  }
  std::string Ident() {
    const Token& t = Next();
    if (t.type != Tok::Ident) Fail("expected a name but found '" + t.text + "'");
    return t.text;
  }
  std::string String() {
    const Token& t = Next();
    if (t.type != Tok::String) Fail("expected a string but found '" + t.text + "'");
    return t.text;
  }
  // A hexadecimal number written 0x..., at most `bits` wide.
  uint64_t Hex(int bits) {
    const Token& t = Next();
    const std::string& s = t.text;
    if (t.type != Tok::Number || s.size() < 3 || s[0] != '0' || (s[1] != 'x' && s[1] != 'X')) {
      Fail("expected a hexadecimal number but found '" + s + "'");
    }
    uint64_t v = 0;
    for (size_t k = 2; k < s.size(); ++k) {
      const char c = s[k];
      int d = IsDigit(c) ? c - '0' : (c >= 'A' && c <= 'F') ? c - 'A' + 10 : (c >= 'a' && c <= 'f') ? c - 'a' + 10 : -1;
      if (d < 0) Fail("'" + s + "' is not a hexadecimal number");
      if (v >> (bits - 4)) Fail("'" + s + "' is wider than " + std::to_string(bits) + " bits");
      v = (v << 4) | static_cast<uint64_t>(d);
    }
    return v;
  }
  int32_t Int32() {
    const Token& t = Next();
    if (t.type != Tok::Number) Fail("expected an integer but found '" + t.text + "'");
    char* end = nullptr;
    errno = 0;
    const long long v = std::strtoll(t.text.c_str(), &end, 10);
    if (*end != '\0' || errno != 0 || v < INT32_MIN || v > INT32_MAX) Fail("'" + t.text + "' is not a 32-bit integer");
    return static_cast<int32_t>(v);
  }
  double Double() {
    const Token& t = Next();
    if (t.type != Tok::Number || t.text.find('x') != std::string::npos) Fail("expected a number but found '" + t.text + "'");
    char* end = nullptr;
    const double v = std::strtod(t.text.c_str(), &end);
    if (*end != '\0') Fail("'" + t.text + "' is not a number");
    return v;
  }
  // (word *)0x... : the address of a text the host translated.
  const TranslatedText& WordText() {
    Expect("(");
    ExpectWord("word");
    Expect("*");
    Expect(")");
    const uint64_t address = Hex(64);
    const TranslatedText* text = in_.env_.FindText(address);
    if (text == nullptr) Fail("address " + Describe(address) + " is not a text the host translated");
    return *text;
  }
  uint64_t CodeAddress() {
    const uint64_t address = Hex(64);
    if (!in_.env_.IsCode(address)) Fail("address " + Describe(address) + " is not in the library's code");
    return address;
  }
  static std::string Describe(uint64_t address) {
    char buf[32];
    std::snprintf(buf, sizeof buf, "0x%llX", static_cast<unsigned long long>(address));
    return buf;
  }
  void End() { Expect(";"); }
  void ObjDf() {
    Expect("&");
    ExpectWord("obj");
    Expect(".");
    ExpectWord("df");
  }
  DeclaredEffect& Current() {
    if (!in_.current_) Fail("no effect is being declared (KrEffect obj; must come first)");
    return *in_.current_;
  }
  DeclaredField& FieldByIndex(int32_t index) {
    for (DeclaredField& f : Current().fields) {
      if (f.index == index) return f;
    }
    Fail("no field of this effect has the index " + std::to_string(index));
  }

  void Statement() {
    const Token& first = Peek();
    if (first.type == Tok::Punct && first.text == "*") return FieldAdd();
    if (first.type == Tok::Punct && first.text == ";") return End();  // an empty statement
    const std::string word = Ident();
    if (word == "KrEffect") return NewEffect();
    if (word == "obj") return Member();
    if (word == "KrDataFieldHelpbyId") return Help();
    if (word == "DataFieldSelItemAddById") return Item();
    if (word == "EffectAdd") return Add();
    Fail("unknown statement '" + word + "'");
  }

  void NewEffect() {
    ExpectWord("obj");
    End();
    if (in_.current_) Fail("a new effect begins before EffectAdd of \"" + in_.current_->name + "\"");
    in_.current_.emplace();
  }

  void Member() {
    DeclaredEffect& e = Current();
    Expect(".");
    const std::string member = Ident();
    Expect("=");
    if (member == "Name") {
      e.name = String();
    } else if (member == "Sign") {
      e.sign = String();
    } else if (member == "Type") {
      e.type = String();
    } else if (member == "Version") {
      e.version = static_cast<uint32_t>(Hex(32));
    } else if (member == "DescriptionW") {
      const TranslatedText& text = WordText();
      e.description = text.text;
      e.descriptionSource = text.source;
      e.descriptionContext = text.context;
    } else if (member == "InitFunction") {
      e.initFunction = CodeAddress();
    } else if (member == "RenderVideoFunctionRT") {
      e.renderFunction = CodeAddress();
    } else if (member == "DeleteUserData") {
      e.deleteUserData = CodeAddress();
    } else {
      Fail("the effect object has no member '" + member + "'");
    }
    End();
  }

  // *((int *)0x...) = KrDataFieldAdd( &obj.df, "Kind", "Key", label[, min,max], flags );
  void FieldAdd() {
    Expect("*");
    Expect("(");
    Expect("(");
    ExpectWord("int");
    Expect("*");
    Expect(")");
    const uint64_t variable = Hex(64);
    Expect(")");
    Expect("=");
    ExpectWord("KrDataFieldAdd");
    Expect("(");
    ObjDf();
    Expect(",");
    DeclaredField f;
    f.variable = variable;
    f.kind = String();
    if (!Contains(kKinds, f.kind)) Fail("unknown field kind \"" + f.kind + "\"");
    Expect(",");
    f.key = String();
    if (f.key.empty()) Fail("a field needs a key");
    DeclaredEffect& e = Current();
    if (e.Field(f.key) != nullptr) Fail("the effect already has a field \"" + f.key + "\"");
    Expect(",");
    if (f.kind == "Input") {
      f.label = f.labelSource = String();
    } else {
      const TranslatedText& label = WordText();
      f.label = label.text;
      f.labelSource = label.source;
      if (e.context.empty()) e.context = label.context;
    }
    Expect(",");
    if (f.kind == "Long" || f.kind == "FloatA") {
      f.hasRange = true;
      f.minimum = Double();
      Expect(",");
      f.maximum = Double();
      Expect(",");
    }
    for (;;) {
      const std::string flag = Ident();
      if (!Contains(kFlags, flag)) Fail("unknown flag '" + flag + "'");
      if (flag != "KrdfNone") f.flags.push_back(flag);
      if (!At(Tok::Punct, "|")) break;
      Expect("|");
    }
    Expect(")");
    End();
    f.index = in_.env_.NextFieldIndex();
    std::string why;
    if (!in_.env_.StoreFieldIndex(variable, f.index, &why)) Fail(why);
    e.fields.push_back(std::move(f));
  }

  // "( &obj.df, index, (word *)0x..." : the field and text a by-index statement names.
  std::pair<DeclaredField*, const TranslatedText*> FieldAndText() {
    Expect("(");
    ObjDf();
    Expect(",");
    DeclaredField& f = FieldByIndex(Int32());
    Expect(",");
    return {&f, &WordText()};
  }

  // KrDataFieldHelpbyId( &obj.df, index, (word *)0x... );
  void Help() {
    auto [field, text] = FieldAndText();
    Expect(")");
    End();
    DeclaredField& f = *field;
    if (!f.helpSource.empty()) Fail("field \"" + f.key + "\" has a help text already");
    f.help = text->text;
    f.helpSource = text->source;
  }

  // DataFieldSelItemAddById( &obj.df, index, (word *)0x..., 0xVALUE );
  void Item() {
    auto [field, text] = FieldAndText();
    DeclaredField& f = *field;
    Expect(",");
    const int32_t value = static_cast<int32_t>(Hex(32));
    Expect(")");
    End();
    if (f.kind != "Selector") Fail("field \"" + f.key + "\" is not a selector");
    for (const DeclaredItem& item : f.items) {
      if (item.value == value) Fail("selector \"" + f.key + "\" has an item of value " + std::to_string(value) + " already");
    }
    f.items.push_back({text->text, text->source, value});
  }

  // EffectAdd( obj );
  void Add() {
    Expect("(");
    ExpectWord("obj");
    Expect(")");
    End();
    DeclaredEffect& e = Current();
    if (e.name.empty()) Fail("the effect has no Name");
    if (e.type != "Transition") Fail("the effect \"" + e.name + "\" is not of Type \"Transition\"");
    if (e.initFunction == 0 || e.renderFunction == 0) Fail("the effect \"" + e.name + "\" lacks an init or render function");
    for (const DeclaredEffect& other : in_.effects_) {
      if (other.name == e.name) Fail("an effect named \"" + e.name + "\" exists already");
    }
    in_.effects_.push_back(std::move(e));
    in_.current_.reset();
  }

  ScriptInterpreter& in_;
  const std::string& text_;
  std::vector<Token> t_;
  size_t pos_ = 0;
};

bool ScriptInterpreter::Execute(const std::string& text) {
  std::vector<Token> tokens;
  try {
    tokens = Tokenize(text);
  } catch (const ScriptError& e) {
    errors_.push_back("cannot read statement " + Quote(text) + ": " + Shortened(e.what()));
    return false;
  }
  if (tokens.empty()) {
    errors_.push_back("cannot run an empty statement");
    return false;
  }
  return StatementRunner(*this, text, std::move(tokens)).Run();
}

}  // namespace krl::emu

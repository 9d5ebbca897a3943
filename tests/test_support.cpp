#include "test_support.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace krl::test {

std::unique_ptr<emu::Host> LoadFresh(const std::string& path, const emu::HostOptions& options) {
  std::string error;
  auto host = emu::Host::Load(path, &error, options);
  if (!host) throw std::runtime_error(error);
  return host;
}

emu::Host& Library() {
  static std::unique_ptr<emu::Host> host = LoadFresh(KRL_LIBRARY_PATH);
  return *host;
}

const emu::DeclaredEffect& Effect(const emu::Host& host, const std::string& name) {
  const emu::DeclaredEffect* e = host.FindEffect(name);
  if (e == nullptr) throw std::runtime_error("no effect " + name);
  return *e;
}

std::string Normalised(const emu::Host& host, const emu::DeclaredEffect& e, const std::string& statement) {
  std::string out;
  size_t i = 0;
  while (i < statement.size()) {
    const size_t at = statement.find("0x", i);
    if (at == std::string::npos) break;
    size_t end = at + 2;
    while (end < statement.size() && std::isxdigit(static_cast<unsigned char>(statement[end]))) ++end;
    const std::string digits = statement.substr(at + 2, end - at - 2);
    const uint64_t v = digits.empty() ? 0 : std::stoull(digits, nullptr, 16);
    std::string name;
    if (const emu::TranslatedText* text = host.FindText(v)) name = text->source;
    if (v == e.initFunction) name = "init";
    if (v == e.renderFunction) name = "render";
    if (v != 0 && v == e.deleteUserData) name = "delete";
    for (const emu::DeclaredField& f : e.fields) {
      if (f.variable == v) name = "var:" + f.key;
    }
    out.append(statement, i, at - i);
    if (name.empty()) {
      out.append(statement, at, end - at);
    } else {
      // Addresses are upper-case hexadecimal without leading zeros.
      const bool plain = !digits.empty() && digits[0] != '0' &&
                         digits.find_first_not_of("0123456789ABCDEF") == std::string::npos;
      EXPECT_TRUE(plain) << statement;
      out += "{" + name + "}";
    }
    i = end;
  }
  out.append(statement, i, std::string::npos);
  return out;
}

std::vector<std::string> StatementsOf(const emu::Host& host, const emu::DeclaredEffect& e) {
  std::vector<std::string> out;
  bool inside = false;
  for (const std::string& s : host.statements()) {
    if (s.rfind("KrEffect obj;", 0) == 0) inside = s.find("\"" + e.name + "\"") != std::string::npos;
    if (inside) out.push_back(Normalised(host, e, s));
    if (inside && s == "EffectAdd( obj );") break;
  }
  return out;
}

emu::Frame Filled(int32_t w, int32_t h, uint32_t pixel) { return emu::Frame(w, h, pixel); }

void ExpectGolden(const std::string& file, const std::string& content) {
  const std::string path = std::string(KRL_GOLDEN_DIR) + "/" + file;
  if (std::getenv("KRL_UPDATE_GOLDEN") != nullptr) {
    std::ofstream(path) << content;
    return;
  }
  std::ifstream in(path);
  ASSERT_TRUE(in.good()) << "no golden file " << path << " (write it with KRL_UPDATE_GOLDEN=1)";
  std::istringstream now(content);
  std::string was, is;
  for (int line = 1, reported = 0; (in || now) && reported < 20; ++line) {
    if (!std::getline(in, was)) was = "(nothing)";
    if (!std::getline(now, is)) is = "(nothing)";
    if (was == is) continue;
    ADD_FAILURE() << file << " line " << line << " changed\n  recorded: " << was << "\n  now:      " << is;
    ++reported;
  }
}

}  // namespace krl::test

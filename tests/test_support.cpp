#include "test_support.h"

#include <gtest/gtest.h>

#include <regex>
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
  static const std::regex kHex("0x([0-9A-Fa-f]+)");
  std::string out;
  auto last = statement.cbegin();
  for (std::sregex_iterator it(statement.begin(), statement.end(), kHex), end; it != end; ++it) {
    const uint64_t v = std::stoull((*it)[1].str(), nullptr, 16);
    std::string name;
    if (const emu::TranslatedText* text = host.FindText(v)) name = text->source;
    if (v == e.initFunction) name = "init";
    if (v == e.renderFunction) name = "render";
    if (v != 0 && v == e.deleteUserData) name = "delete";
    for (const emu::DeclaredField& f : e.fields) {
      if (f.variable == v) name = "var:" + f.key;
    }
    out.append(last, (*it)[0].first);
    if (name.empty()) {
      out += it->str();
    } else {
      // Addresses are upper-case hexadecimal without leading zeros.
      EXPECT_TRUE(std::regex_match((*it)[1].str(), std::regex("[1-9A-F][0-9A-F]*"))) << statement;
      out += "{" + name + "}";
    }
    last = (*it)[0].second;
  }
  out.append(last, statement.cend());
  return out;
}

emu::Frame Filled(int32_t w, int32_t h, uint32_t pixel) { return emu::Frame(w, h, pixel); }

}  // namespace krl::test

#include "gateway/json/printable.h"

#include <fmt/format.h>

#include <cstdint>
#include <optional>

#include "base/text.h"

namespace zel::gateway {
namespace {

bool isPrintable(char32_t code) {
  const auto isIn = [code](char32_t first, char32_t last) { return code >= first && code <= last; };
  const bool isControl = code < 0x20 || isIn(0x7F, 0x9F);
  const bool turns = code == 0x61C || isIn(0x200E, 0x200F) || isIn(0x202A, 0x202E) || isIn(0x2066, 0x206F);
  const bool separates = isIn(0x2028, 0x2029);
  return !isControl && !turns && !separates;
}

// instead: returns the replacement of an unprintable character, which has no code point where a byte is invalid.
template <class Instead>
std::string rewritten(std::string_view text, Instead instead) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const Character letter = firstCharacter(text);
    if (letter.code && isPrintable(*letter.code)) {
      result += text.substr(0, letter.bytes);
    } else {
      result += instead(letter.code);
    }
    text.remove_prefix(letter.bytes);
  }
  return result;
}

}  // namespace

std::string printable(std::string_view text) {
  return rewritten(text, [](auto) { return "?"; });
}

std::string withoutUnprintable(std::string_view text) {
  return rewritten(text, [](auto) { return ""; });
}

std::string printableJson(std::string_view line) {
  return rewritten(line, [](std::optional<char32_t> code) {
    return code ? fmt::format("\\u{:04x}", static_cast<std::uint32_t>(*code)) : std::string("?");
  });
}

}  // namespace zel::gateway

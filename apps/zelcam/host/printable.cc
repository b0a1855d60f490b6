#include "apps/zelcam/host/printable.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace zel::app {
namespace {

constexpr char32_t kNoLetter = 0xFFFFFFFF;

// The first character of a non-empty text: its code point and length. An invalid byte is a character of length 1
// without a code point.
struct Letter {
  char32_t code = kNoLetter;
  std::size_t size = 1;
};

struct Form {
  std::uint8_t mask, lead;  // of the first byte
  std::size_t size;
  char32_t least;  // smaller code points have a shorter, mandatory form
};

constexpr Form kForms[] = {{0x80, 0x00, 1, 0}, {0xE0, 0xC0, 2, 0x80}, {0xF0, 0xE0, 3, 0x800}, {0xF8, 0xF0, 4, 0x10000}};

Letter firstLetter(std::string_view text) {
  const auto byteAt = [text](std::size_t at) { return static_cast<std::uint8_t>(text[at]); };
  const auto* const form =
      std::ranges::find_if(kForms, [&](const Form& one) { return (byteAt(0) & one.mask) == one.lead; });
  if (form == std::end(kForms) || form->size > text.size()) return {};
  char32_t code = byteAt(0) & static_cast<std::uint8_t>(~form->mask);
  for (std::size_t i = 1; i < form->size; ++i) {
    if ((byteAt(i) & 0xC0) != 0x80) return {};
    code = code << 6 | (byteAt(i) & 0x3F);
  }
  const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
  if (code < form->least || code > 0x10FFFF || isSurrogate) return {};
  return {code, form->size};
}

bool isPrintable(char32_t code) {
  const auto isIn = [code](char32_t first, char32_t last) { return code >= first && code <= last; };
  const bool isControl = code < 0x20 || isIn(0x7F, 0x9F);
  const bool turns = code == 0x61C || isIn(0x200E, 0x200F) || isIn(0x202A, 0x202E) || isIn(0x2066, 0x206F);
  const bool separates = isIn(0x2028, 0x2029);
  return code != kNoLetter && !isControl && !turns && !separates;
}

// instead: returns the replacement of an unprintable character.
template <class Instead>
std::string rewritten(std::string_view text, Instead instead) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) {
    const Letter letter = firstLetter(text);
    if (isPrintable(letter.code)) {
      result += text.substr(0, letter.size);
    } else {
      result += instead(letter.code);
    }
    text.remove_prefix(letter.size);
  }
  return result;
}

}  // namespace

std::string printable(std::string_view text) {
  return rewritten(text, [](char32_t) { return "?"; });
}

std::string withoutUnprintable(std::string_view text) {
  return rewritten(text, [](char32_t) { return ""; });
}

std::string printableJson(std::string_view line) {
  return rewritten(line, [](char32_t code) {
    return code == kNoLetter ? std::string("?") : fmt::format("\\u{:04x}", static_cast<std::uint32_t>(code));
  });
}

}  // namespace zel::app

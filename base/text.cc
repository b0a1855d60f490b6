#include "base/text.h"

#include <cstdint>

namespace zel {
namespace {

struct Form {
  std::uint8_t mask, lead;
  std::size_t bytes;
  char32_t least;  // smaller code points have a shorter, mandatory form
};
constexpr Form kForms[] = {{0x80, 0x00, 1, 0}, {0xE0, 0xC0, 2, 0x80}, {0xF0, 0xE0, 3, 0x800}, {0xF8, 0xF0, 4, 0x10000}};

bool isScalar(char32_t code) { return code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF); }

Character decode(std::string_view text, const Form& form) {
  if (text.size() < form.bytes) return {};
  char32_t code = static_cast<std::uint8_t>(text[0]) & static_cast<std::uint8_t>(~form.mask);
  for (std::size_t i = 1; i < form.bytes; ++i) {
    const auto byte = static_cast<std::uint8_t>(text[i]);
    if ((byte & 0xC0) != 0x80) return {};
    code = (code << 6) | (byte & 0x3Fu);
  }
  if (code < form.least || !isScalar(code)) return {};
  return {code, form.bytes};
}

std::size_t utf16Units(const Character& character) { return character.code.value_or(0) > 0xFFFF ? 2 : 1; }

}  // namespace

Character firstCharacter(std::string_view text) {
  const auto lead = static_cast<std::uint8_t>(text[0]);
  for (const Form& form : kForms) {
    if ((lead & form.mask) == form.lead) return decode(text, form);
  }
  return {};
}

bool isUtf8(std::string_view text) {
  while (!text.empty()) {
    const Character character = firstCharacter(text);
    if (!character.code) return false;
    text.remove_prefix(character.bytes);
  }
  return true;
}

std::size_t characterCount(std::string_view text) {
  std::size_t count = 0;
  while (!text.empty()) {
    const Character character = firstCharacter(text);
    count += utf16Units(character);
    text.remove_prefix(character.bytes);
  }
  return count;
}

std::string_view withoutCharacters(std::string_view text, std::size_t count) {
  while (!text.empty() && count > 0) {
    const Character character = firstCharacter(text);
    count -= std::min(count, utf16Units(character));
    text.remove_prefix(character.bytes);
  }
  return text;
}

std::optional<std::string> zeroTerminatedUtf8(ByteView bytes) {
  std::string_view text = asText(bytes);
  text = text.substr(0, text.find('\0'));
  return isUtf8(text) ? std::optional<std::string>(text) : std::nullopt;
}

}  // namespace zel

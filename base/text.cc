#include "base/text.h"

#include <cstdint>

namespace zel {
namespace {

struct Character {
  std::size_t bytes = 1;
  std::size_t utf16Units = 1;
  bool valid = false;
};

struct Form {
  std::uint8_t mask, lead;
  std::size_t bytes;
  std::uint32_t least;
};
constexpr Form kForms[] = {{0x80, 0x00, 1, 0}, {0xE0, 0xC0, 2, 0x80}, {0xF0, 0xE0, 3, 0x800}, {0xF8, 0xF0, 4, 0x10000}};

bool isScalar(std::uint32_t code) { return code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF); }

Character decode(std::string_view text, const Form& form) {
  if (text.size() < form.bytes) return {};
  std::uint32_t code = static_cast<std::uint8_t>(text[0]) & static_cast<std::uint8_t>(~form.mask);
  for (std::size_t i = 1; i < form.bytes; ++i) {
    const auto byte = static_cast<std::uint8_t>(text[i]);
    if ((byte & 0xC0) != 0x80) return {};
    code = (code << 6) | (byte & 0x3Fu);
  }
  if (code < form.least || !isScalar(code)) return {};
  return {form.bytes, code > 0xFFFF ? 2u : 1u, true};
}

// The first character of a non-empty text.
Character firstCharacter(std::string_view text) {
  const auto lead = static_cast<std::uint8_t>(text[0]);
  for (const Form& form : kForms) {
    if ((lead & form.mask) == form.lead) return decode(text, form);
  }
  return {};
}

}  // namespace

bool isUtf8(std::string_view text) {
  while (!text.empty()) {
    const Character character = firstCharacter(text);
    if (!character.valid) return false;
    text.remove_prefix(character.bytes);
  }
  return true;
}

std::size_t characterCount(std::string_view text) {
  std::size_t count = 0;
  while (!text.empty()) {
    const Character character = firstCharacter(text);
    count += character.utf16Units;
    text.remove_prefix(character.bytes);
  }
  return count;
}

std::string_view withoutCharacters(std::string_view text, std::size_t count) {
  while (!text.empty() && count > 0) {
    const Character character = firstCharacter(text);
    count -= std::min(count, character.utf16Units);
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

#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "base/wire.h"

namespace zel {

inline std::string_view asText(ByteView bytes) { return {reinterpret_cast<const char*>(bytes.data()), bytes.size()}; }

inline bool isAscii(std::string_view text) {
  return std::ranges::all_of(text, [](char letter) { return static_cast<unsigned char>(letter) < 0x80; });
}

// A character of UTF-8. A byte that begins none counts as a character without a code point.
struct Character {
  std::optional<char32_t> code;
  std::size_t bytes = 1;
};

// The first one of a text that is not empty.
Character firstCharacter(std::string_view text);

// Whether the bytes are UTF-8: no overlong form, no surrogate, nothing above U+10FFFF.
bool isUtf8(std::string_view text);

// The number of 16-bit units that the text has in UTF-16, which hosts count as characters. A byte that is not UTF-8
// counts as one.
std::size_t characterCount(std::string_view text);

// The text without its first `count` such characters. A character that would be cut in half is removed whole.
std::string_view withoutCharacters(std::string_view text, std::size_t count);

// The bytes up to the first zero, or to the end, as UTF-8 text; nothing when they are not UTF-8.
std::optional<std::string> zeroTerminatedUtf8(ByteView bytes);

}  // namespace zel

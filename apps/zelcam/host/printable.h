#pragma once

#include <string>
#include <string_view>

namespace zel::app {

// Texts from outside, in UTF-8, for terminals and file names. What a terminal might obey, or what turns the writing's
// direction so that a line reads as another one, is no part of either: control characters (C0, DEL, C1), the controls
// of bidirectional text, separators of lines, and bytes that are no UTF-8 (0x9B alone is a control to some terminals).

// The text with a "?" for each of them.
std::string printable(std::string_view text);

// The text without them.
std::string withoutUnprintable(std::string_view text);

// A line of JSON with each of them as the escape that JSON has for it; it means the same.
// line: as JSON is written, with controls below 0x20 escaped already.
std::string printableJson(std::string_view line);

}  // namespace zel::app

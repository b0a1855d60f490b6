#pragma once

#include <string>
#include <string_view>

namespace zel::gateway {

// Makes external UTF-8 text safe for terminals and file names. Removes or replaces everything that could control a
// terminal or reverse the writing direction: control characters (C0, DEL, C1), bidirectional controls, line separators,
// and bytes that are not UTF-8 (0x9B alone is a control for some terminals).

// The text with a "?" for each of them.
std::string printable(std::string_view text);

// The text without them.
std::string withoutUnprintable(std::string_view text);

// A line of JSON with each of them as a JSON escape; its meaning is unchanged.
// line: as JSON is written, with controls below 0x20 escaped already.
std::string printableJson(std::string_view line);

}  // namespace zel::gateway

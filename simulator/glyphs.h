#pragma once

namespace zel::simulator {

inline constexpr int kGlyphWidth = 5, kGlyphHeight = 7;

// Whether a dot of a character is set. Supports 0 to 9, N E S W and : . + -; other characters and positions outside the
// glyph are blank. Row 0 is the top.
bool glyphDot(char character, int column, int row);

}  // namespace zel::simulator

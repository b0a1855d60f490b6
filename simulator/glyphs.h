#pragma once

namespace zel::simulator {

inline constexpr int kGlyphWidth = 5, kGlyphHeight = 7;

// Whether a dot of a character is set. It knows 0 to 9, N E S W and : . + -; others are blank, and so is everything
// outside the glyph. Row 0 is the top.
bool glyphDot(char character, int column, int row);

}  // namespace zel::simulator

#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/render/picture.h"

namespace zel::render {

// A picture with straight (not multiplied) alpha: red, green, blue, alpha in turn, rows from the top without gaps.
struct LogoImage {
  static constexpr int kLargestSide = 4096;

  int width = 0, height = 0;
  std::vector<std::uint8_t> rgba;
};

// Whether the sides are 1 to kLargestSide and the number of bytes matches.
bool isUsable(const LogoImage& image);

// A logo below the camera, over the tripod: its longer side is 40 degrees wide and its centre is the nadir. Its top
// points forward; a positive angle rotates it clockwise as seen from above. Colours are full range, with the matrix of
// the pictures on which it is drawn.
// Thread: any thread after construction, several at a time.
class NadirLogo {
 public:
  static constexpr double kHalfSide = 20;  // degrees

  // The logo must be usable, the angle finite and in degrees.
  NadirLogo(const LogoImage& image, double angle, PictureSize output,
            platform::ColourMatrix matrix = platform::ColourMatrix::bt601);

  // The rows that it covers in a plane; divisor: 1 luma, 2 chroma.
  std::size_t firstRow(int divisor) const { return planeOf(divisor).firstRow; }

  // Draws one row. row: of the plane, at least its first.
  void drawLuma(std::size_t row, std::uint8_t* out) const { draw(luma_, row, out); }
  void drawChroma(std::size_t row, std::uint8_t* out) const { draw(chroma_, row, out); }

 private:
  // out = value + out * through / 255, for every byte.
  struct Plane {
    std::size_t firstRow = 0, rowBytes = 0;
    std::vector<std::uint8_t> values, through;
  };

  const Plane& planeOf(int divisor) const { return divisor == 1 ? luma_ : chroma_; }
  static void draw(const Plane& plane, std::size_t row, std::uint8_t* out);

  Plane luma_, chroma_;
};

}  // namespace zel::render

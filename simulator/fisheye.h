#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "simulator/lens_offset.h"
#include "simulator/picture.h"

namespace zel::simulator {

// Shows an equirectangular scene as the two lenses see it: two circles on one picture, black around them.
// Thread: any thread after construction, several at a time.
class FisheyeProjector {
 public:
  // The map is built here, which takes far longer than a picture. The offset's pixels are stretched to the output's
  // width and height. Sizes are at least 1.
  FisheyeProjector(const LensOffset& offset, int outWidth, int outHeight, int sceneWidth, int sceneHeight);

  // Errors: a scene of another size than the map is for gives a black picture.
  Picture project(const Picture& scene) const;

 private:
  // Where a pixel is read: four neighbours in the scene with its edges continued, see continued() in the source.
  struct Tap {
    std::uint32_t corner;       // the top left neighbour
    std::uint16_t right, down;  // shares of the others, in 256ths
  };
  struct Span {
    std::size_t pixel;  // the first of its row; pixels outside the circles are in no span
    std::size_t count;
  };

  void addRow(const LensOffset& offset, const LensProjection (&lenses)[2], int y);
  Tap tapAt(Direction direction) const;

  const int outWidth_, outHeight_, sceneWidth_, sceneHeight_;
  std::vector<Span> spans_;
  std::vector<Tap> taps_;  // of all spans, one after the other
};

}  // namespace zel::simulator

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

  // Rows of a picture, from `first` to before `end`.
  struct Rows {
    int first = 0, end = 0;
  };

  // The rows that show any of the scene's rows.
  Rows rowsShowing(Rows ofScene) const;

  // Shows those rows of the scene anew on a picture of the output's size.
  // Errors: as above, the picture then stays.
  void renew(const Picture& scene, Rows rows, Picture& out) const;

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
  int sceneRowOf(const Tap& tap) const { return static_cast<int>(tap.corner) / (sceneWidth_ + 1); }
  Tap tapAt(Direction direction) const;

  const int outWidth_, outHeight_, sceneWidth_, sceneHeight_;
  std::vector<Span> spans_;
  std::vector<Tap> taps_;                          // of all spans, one after the other
  std::vector<std::size_t> spanOfRow_, tapOfRow_;  // the first ones of each row, and behind the last
};

}  // namespace zel::simulator

#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "simulator/lens_offset.h"
#include "simulator/picture.h"

namespace zel::simulator {

// Projects an equirectangular scene to the two lenses: two circles on one picture, black around them.
// Thread: any thread after construction, several at a time.
class FisheyeProjector {
 public:
  // Builds the map, which takes much longer than a picture. The offset's pixels are scaled to the output's width and
  // height. Sizes are at least 1.
  FisheyeProjector(const LensOffset& offset, int outWidth, int outHeight, int sceneWidth, int sceneHeight);

  // Errors: a scene whose size does not match the map gives a black picture.
  Picture project(const Picture& scene) const;

  // Rows of a picture, from `first` to before `end`.
  struct Rows {
    int first = 0, end = 0;
  };

  // The output rows that show any of these scene rows.
  Rows rowsShowing(Rows ofScene) const;

  // Updates these rows in a picture of the output's size.
  // Errors: for a scene of another size the picture is unchanged.
  void renew(const Picture& scene, Rows rows, Picture& out) const;

 private:
  // The source of a pixel: four neighbours in the scene with its edges continued, see continued() in the source.
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
  std::vector<Tap> taps_;                          // of all spans in order
  std::vector<std::size_t> spanOfRow_, tapOfRow_;  // the first ones of each row, and the end
};

}  // namespace zel::simulator

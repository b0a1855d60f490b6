#pragma once

#include <map>
#include <memory>
#include <vector>

#include "simulator/fisheye.h"
#include "simulator/scene.h"
#include "simulator/wire.h"

namespace zel::simulator {

// Renders photos of the scene through both lenses.
// Thread: one at a time.
class PhotoStudio {
 public:
  // One JPEG file for each exposure. width is twice the height. seconds: of the scene's clock. stops: of each picture.
  // The first picture of a size takes longer, because its map is built.
  std::vector<Bytes> take(int width, int height, double seconds, const std::vector<double>& stops);

 private:
  struct Set {
    Scene scene;
    FisheyeProjector projector;
  };

  const Set& setOf(int width, int height);

  std::map<int, std::unique_ptr<Set>> sets_;  // by width
};

}  // namespace zel::simulator

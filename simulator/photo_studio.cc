#include "simulator/photo_studio.h"

#include "simulator/jpeg.h"
#include "simulator/lens_offset.h"

namespace zel::simulator {
namespace {

constexpr int kQuality = 90;

}  // namespace

std::vector<Bytes> PhotoStudio::take(int width, int height, double seconds, const std::vector<double>& stops) {
  const Set& set = setOf(width, height);
  const Picture picture = set.projector.project(set.scene.at(seconds));
  std::vector<Bytes> files;
  for (const double stop : stops) files.push_back(encodeJpeg(exposed(picture, stop), kQuality));
  return files;
}

const PhotoStudio::Set& PhotoStudio::setOf(int width, int height) {
  std::unique_ptr<Set>& set = sets_[width];
  if (!set) {
    set = std::unique_ptr<Set>(
        new Set{Scene(width, height), FisheyeProjector(factoryLensOffset(), width, height, width, height)});
  }
  return *set;
}

}  // namespace zel::simulator

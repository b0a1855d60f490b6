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
  files.reserve(stops.size());
  for (const double stop : stops) files.push_back(encodeJpeg(exposed(picture, stop), kQuality));
  return files;
}

const PhotoStudio::Set& PhotoStudio::setOf(int width, int height) {
  std::unique_ptr<Set>& set = sets_[width];
  if (!set) {
    FisheyeProjector projector(factoryLensOffset(), width, height, width, height);
    set = std::make_unique<Set>(Set{Scene(width, height), std::move(projector)});
  }
  return *set;
}

}  // namespace zel::simulator

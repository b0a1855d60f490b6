#pragma once

#include <string>
#include <vector>

#include "simulator/media/annex_b.h"
#include "simulator/media/preview_format.h"

namespace zel::simulator {

// Loops that were made before, as H.264 files in a folder: $XDG_CACHE_HOME/zelcam-sim, else ~/.cache/zelcam-sim.
class LoopCache {
 public:
  // An empty folder keeps nothing.
  explicit LoopCache(std::string folder = standardFolder()) : folder_(std::move(folder)) {}

  static std::string standardFolder();

  // The kept loop of that length that begins with the very bytes of `first`, so that what another program version made
  // is not taken. Errors: no pictures where there is none, or none that is whole.
  std::vector<VideoPicture> find(const PreviewFormat& format, const VideoPicture& first, std::size_t length) const;

  // Appears under its name when it is whole. Errors: none; what cannot be written is not kept.
  void keep(const PreviewFormat& format, const std::vector<VideoPicture>& pictures) const;

 private:
  std::string fileOf(const PreviewFormat& format) const;

  const std::string folder_;
};

}  // namespace zel::simulator

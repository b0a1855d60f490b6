#pragma once

#include <string>
#include <utility>

#include "simulator/wire.h"

namespace zel::simulator {

// A cache of files that take long to generate, in a folder: $XDG_CACHE_HOME/zelcam-sim, else ~/.cache/zelcam-sim.
class LoopCache {
 public:
  // An empty folder disables the cache.
  explicit LoopCache(std::string folder = standardFolder()) : folder_(std::move(folder)) {}

  static std::string standardFolder();

  // Empty if there is no such readable file.
  Bytes find(const std::string& name) const;

  // The file appears under its name when it is complete.
  // Errors: none; a file that cannot be written is not cached.
  void keep(const std::string& name, const Bytes& content) const;

 private:
  const std::string folder_;
};

}  // namespace zel::simulator

#pragma once

#include <string>
#include <utility>

#include "simulator/wire.h"

namespace zel::simulator {

// Files that took long to make, kept in a folder: $XDG_CACHE_HOME/zelcam-sim, else ~/.cache/zelcam-sim.
class LoopCache {
 public:
  // An empty folder keeps nothing.
  explicit LoopCache(std::string folder = standardFolder()) : folder_(std::move(folder)) {}

  static std::string standardFolder();

  // No bytes where there is no such file, or none that can be read.
  Bytes find(const std::string& name) const;

  // The file appears under its name when it is whole.
  // Errors: none; what cannot be written is not kept.
  void keep(const std::string& name, const Bytes& content) const;

 private:
  const std::string folder_;
};

}  // namespace zel::simulator

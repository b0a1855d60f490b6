#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>

#include "simulator/wire.h"

namespace zel::simulator {

inline constexpr std::size_t kMostExtra = 64 * 1024;  // bytes that a host may add to a file

// The host's extra info about files, by name.
class ExtraInfo {
 public:
  // Errors: false without a name, for too many bytes, and when too many files have extra info already.
  bool set(const std::string& name, Bytes info);

  std::optional<Bytes> of(const std::string& name) const;

 private:
  std::map<std::string, Bytes> infos_;
};

}  // namespace zel::simulator

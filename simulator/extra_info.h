#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "simulator/wire.h"

namespace zel::simulator {

inline constexpr std::size_t kMostExtra = 64 * 1024;  // bytes that a host may add to a file

// The host's extra info about files, by name.
class ExtraInfo {
 public:
  // Errors: false without a name, for too many bytes, and when too many files have extra info already.
  bool set(const std::string& name, Bytes info) {
    if (name.empty() || info.size() > kMostExtra) return false;
    if (infos_.size() >= kMostInfos && !infos_.contains(name)) return false;
    infos_[name] = std::move(info);
    return true;
  }

  std::optional<Bytes> of(const std::string& name) const {
    const auto found = infos_.find(name);
    if (found == infos_.end()) return std::nullopt;
    return found->second;
  }

 private:
  static constexpr std::size_t kMostInfos = 1000;

  std::map<std::string, Bytes> infos_;
};

}  // namespace zel::simulator

#include "simulator/extra_info.h"

#include <utility>

namespace zel::simulator {
namespace {

constexpr std::size_t kMostExtraInfos = 1000;

}  // namespace

bool ExtraInfo::set(const std::string& name, Bytes info) {
  if (name.empty() || info.size() > kMostExtra) return false;
  if (infos_.size() >= kMostExtraInfos && !infos_.contains(name)) return false;
  infos_[name] = std::move(info);
  return true;
}

std::optional<Bytes> ExtraInfo::of(const std::string& name) const {
  const auto found = infos_.find(name);
  if (found == infos_.end()) return std::nullopt;
  return found->second;
}

}  // namespace zel::simulator

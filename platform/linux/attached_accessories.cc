#include "platform/linux/attached_accessories.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "platform/linux/accessory_description.h"

namespace zel::platform {
namespace {

void sortForListing(AttachedAccessories::List& accessories) {
  std::ranges::stable_sort(accessories, {}, [](const auto& one) { return one->description().connectionID; });
}

}  // namespace

std::vector<std::string> AttachedAccessories::namesToLookAt() const {
  std::vector<std::string> names = accessoryNames(folder_);
  for (const auto& [name, unused] : known_) names.push_back(name);
  std::sort(names.begin(), names.end());
  names.erase(std::unique(names.begin(), names.end()), names.end());
  return names;
}

AttachedAccessories::List AttachedAccessories::takeDepartures(const std::vector<std::string>& names) {
  List departed;
  for (const std::string& name : names) {
    const auto known = known_.find(name);
    if (known == known_.end() || known->second.file == readAccessoryFile(folder_ + "/" + name)) continue;
    if (const auto& accessory = known->second.accessory) {
      accessory->depart();
      departed.push_back(accessory);
    }
    known_.erase(known);
  }
  return departed;
}

AttachedAccessories::List AttachedAccessories::takeArrivals(const std::vector<std::string>& names,
                                                            std::vector<std::string>& warnings) {
  List arrived;
  for (const std::string& name : names) {
    if (known_.contains(name)) continue;
    const std::string path = folder_ + "/" + name;
    AccessoryFile file = readAccessoryFile(path);
    if (!file.present) continue;
    const auto accessory = admit(path, file, warnings);
    if (accessory) arrived.push_back(accessory);
    known_.emplace(name, Known{std::move(file), accessory, nullptr});
  }
  sortForListing(arrived);
  return arrived;
}

std::shared_ptr<LinuxAccessory> AttachedAccessories::admit(const std::string& path, const AccessoryFile& file,
                                                           std::vector<std::string>& warnings) const {
  std::string fault = file.fault;
  std::optional<ParsedAccessory> parsed;
  if (fault.empty()) parsed = parseAccessoryDescription(file.text, fault);
  if (parsed) return std::make_shared<LinuxAccessory>(path, file.identity, std::move(*parsed));
  warnings.push_back("accessory file " + path + " skipped: " + fault);
  return nullptr;
}

AttachedAccessories::List AttachedAccessories::shown() const {
  List all = those(&Known::accessory);
  sortForListing(all);
  return all;
}

bool AttachedAccessories::sendAway(const std::shared_ptr<LinuxAccessory>& accessory) {
  for (auto& [name, known] : known_) {
    if (known.accessory != accessory) continue;
    accessory->depart();
    known.away = std::move(known.accessory);
    return true;
  }
  return false;
}

AttachedAccessories::List AttachedAccessories::those(std::shared_ptr<LinuxAccessory> Known::*which) const {
  List all;
  for (const auto& [name, known] : known_) {
    if (known.*which) all.push_back(known.*which);
  }
  return all;
}

std::shared_ptr<LinuxAccessory> AttachedAccessories::bringBack(const std::shared_ptr<LinuxAccessory>& away) {
  for (auto& [name, known] : known_) {
    if (known.away != away) continue;
    known.accessory = std::exchange(known.away, nullptr)->again();
    return known.accessory;
  }
  return nullptr;
}

}  // namespace zel::platform

#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/accessory_file.h"
#include "platform/linux/linux_accessory.h"

namespace zel::platform {

// The known content of the bus's folder. An accessory is "away" when its file exists, but its stream has ended.
//
// Thread: one at a time, under the owner's lock.
class AttachedAccessories {
 public:
  using List = std::vector<std::shared_ptr<LinuxAccessory>>;

  explicit AttachedAccessories(std::string folder) : folder_(std::move(folder)) {}

  // The names of the current and of the known files.
  std::vector<std::string> namesToLookAt() const;
  // Removes the files that no longer exist or were replaced, and returns their accessories.
  List takeDepartures(const std::vector<std::string>& names);
  // Adds the unknown files, and returns their accessories in listing order. Adds a line to `warnings` for each skipped
  // file.
  List takeArrivals(const std::vector<std::string>& names, std::vector<std::string>& warnings);
  // The attached accessories, in listing order.
  List shown() const;

  // Marks the accessory as away. False when it was away already.
  bool sendAway(const std::shared_ptr<LinuxAccessory>& accessory);
  List away() const { return those(&Known::away); }
  // Attaches an away accessory again, as a new object. Null when its file no longer exists.
  std::shared_ptr<LinuxAccessory> bringBack(const std::shared_ptr<LinuxAccessory>& away);

 private:
  struct Known {
    AccessoryFile file;
    std::shared_ptr<LinuxAccessory> accessory;  // null when the file was skipped, or it is away
    std::shared_ptr<LinuxAccessory> away;
  };

  List those(std::shared_ptr<LinuxAccessory> Known::*which) const;
  std::shared_ptr<LinuxAccessory> admit(const std::string& path, const AccessoryFile& file,
                                        std::vector<std::string>& warnings) const;

  const std::string folder_;
  std::map<std::string, Known, std::less<>> known_;  // by file name
};

}  // namespace zel::platform

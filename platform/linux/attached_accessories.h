#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/accessory_file.h"
#include "platform/linux/linux_accessory.h"

namespace zel::platform {

// What the folder of the bus is known to hold. An accessory is away when its file is there, but its stream has ended.
//
// Thread: one at a time; the owner's lock.
class AttachedAccessories {
 public:
  using List = std::vector<std::shared_ptr<LinuxAccessory>>;

  explicit AttachedAccessories(std::string folder) : folder_(std::move(folder)) {}

  // The names of the files that are there, and of those that were.
  std::vector<std::string> namesToLookAt() const;
  // Forgets the files that are gone or replaced, and returns the accessories among them.
  List takeDepartures(const std::vector<std::string>& names);
  // Takes in the files that are not known, and returns the accessories among them in the order of a listing. Adds a
  // line to `warnings` for each that is skipped.
  List takeArrivals(const std::vector<std::string>& names, std::vector<std::string>& warnings);
  // Those that are attached, in the order of a listing.
  List shown() const;

  // The accessory has left, though its file is there. False when it had left before.
  bool sendAway(const std::shared_ptr<LinuxAccessory>& accessory);
  List away() const;
  // Attaches one that is away again, as another object. Null when its file has gone meanwhile.
  std::shared_ptr<LinuxAccessory> bringBack(const std::shared_ptr<LinuxAccessory>& away);

 private:
  struct Known {
    AccessoryFile file;
    std::shared_ptr<LinuxAccessory> accessory;  // null when the file was skipped, or it is away
    std::shared_ptr<LinuxAccessory> away;
  };

  std::shared_ptr<LinuxAccessory> admit(const std::string& path, const AccessoryFile& file,
                                        std::vector<std::string>& warnings) const;

  const std::string folder_;
  std::map<std::string, Known, std::less<>> known_;  // by file name
};

}  // namespace zel::platform

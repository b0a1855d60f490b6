#pragma once

#include <string>

#include "platform/linux/unique_descriptor.h"

namespace zel::simulator {

// The simulated camera's description of itself.
struct Identity {
  std::string name = "Example 360";
  std::string serial = "E1A0001";
  int firmware = 192;
};

// Writes the accessory's file into the bus folder and removes it.
class AccessoryPublisher {
 public:
  // Errors: ok() is false and error() says why the folder cannot be used.
  AccessoryPublisher(const std::string& chosenFolder, Identity identity);
  ~AccessoryPublisher() { withdraw(); }
  AccessoryPublisher(const AccessoryPublisher&) = delete;
  AccessoryPublisher& operator=(const AccessoryPublisher&) = delete;

  bool ok() const { return error_.empty(); }
  const std::string& error() const { return error_; }

  // Writes the file under a hidden name and renames it, with a new connection identifier each time.
  // Errors: false when it cannot be written, or belongs to another simulator; error() says why.
  bool publish(const std::string& socketPath);
  void withdraw();

  const std::string& file() const { return file_; }

 private:
  Identity identity_;
  std::string folder_;
  std::string file_;
  std::string error_;
  bool published_ = false;
  // The file, locked while it is published: an unlocked one is a leftover.
  platform::UniqueDescriptor lock_;
};

}  // namespace zel::simulator

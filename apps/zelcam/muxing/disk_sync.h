#pragma once

#include <string>

namespace zel::app {

// Puts on the disk what somebody else writes into a file, so that a power cut leaves it. A pipe or a device has nothing
// to put there.
// Thread: one at a time.
class DiskSync {
 public:
  DiskSync() = default;
  ~DiskSync();
  DiskSync(const DiskSync&) = delete;
  DiskSync& operator=(const DiskSync&) = delete;

  // The file, which must be there, and its name in its folder.
  // Errors: the error's number, else 0.
  int open(const std::string& path);
  // Waits for the disk.
  // Errors: likewise.
  int sync() const;

 private:
  int file_ = -1;
};

}  // namespace zel::app

#pragma once

#include <string>

namespace zel {

// Syncs a file that other code writes to disk, so that it survives a power cut. Does nothing for a pipe or a device.
// Thread: one at a time.
class DiskSync {
 public:
  DiskSync() = default;
  ~DiskSync();
  DiskSync(const DiskSync&) = delete;
  DiskSync& operator=(const DiskSync&) = delete;

  // The file, which must be there, and its name in its folder.
  //
  // Errors: the error's number, else 0.
  int open(const std::string& path);
  // Waits for the disk.
  //
  // Errors: the same.
  int sync() const;

 private:
  int file_ = -1;
};

}  // namespace zel

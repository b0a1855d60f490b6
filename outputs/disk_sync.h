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

  // Opens the file, which must exist, and syncs its name in its folder.
  //
  // Errors: errno, else 0.
  int open(const std::string& path);
  // Syncs the file's content.
  //
  // Errors: the same.
  int sync() const;

 private:
  int file_ = -1;
};

}  // namespace zel

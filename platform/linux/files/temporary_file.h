#pragma once

#include <sys/types.h>

#include <cstdint>
#include <span>
#include <string>

namespace zel {

// A temporary file in its final folder, removed unless it gets its final name. Until then it is called ".zelcam-" and
// six letters, and is locked. A killed program loses its lock, so the next temporary file in that folder can recognise
// and remove leftovers.
// Thread: one at a time.
class TemporaryFile {
 public:
  // Errors: isThere() is then false, and errno says why.
  explicit TemporaryFile(const std::string& folder, mode_t mode = 0644);
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  bool isThere() const { return file_ >= 0; }
  int descriptor() const { return file_; }
  const std::string& path() const { return path_; }

  // Appends the bytes.
  //
  // Errors: false; errno says why.
  bool write(std::span<const std::uint8_t> bytes) const;

  // Both sync the file first, so that after a power cut it is complete under its name.
  //
  // Errors: false; errno says why.
  bool replace(const std::string& path);
  // Never replaces a file: errno is then EEXIST.
  bool appearAs(const std::string& path);

 private:
  std::string path_;
  int file_ = -1;
};

// Removes unlocked temporary files.
void removeLeftovers(const std::string& folder);

}  // namespace zel

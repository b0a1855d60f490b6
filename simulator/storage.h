#pragma once

#include <filesystem>
#include <optional>
#include <span>
#include <string>

#include "simulator/wire.h"

namespace zel::simulator {

// A path that a host names, as one below a folder.
// Errors: nothing for an empty or absolute path, for one with an empty, "." or ".." part, and for control characters.
std::optional<std::filesystem::path> safePath(const std::string& path);

// The folder that stands for the card's files.
// Thread: any thread for write(), until end().
class Storage {
 public:
  // folder: made when it is missing. Empty: a temporary one, which is removed at the end with everything in it.
  // Errors: ok() is false when it cannot be made.
  explicit Storage(const std::string& folder);
  ~Storage() { end(); }
  Storage(const Storage&) = delete;
  Storage& operator=(const Storage&) = delete;

  bool ok() const { return !folder_.empty(); }
  const std::filesystem::path& folder() const { return folder_; }

  // Removes a temporary folder now; nothing can be written any more.
  void end();

  // Makes the sub-folders; the file appears under its name when it is whole, in place of one that was there.
  // Errors: false for a path that is not safe, and when the file cannot be written; nothing is left of it then.
  bool write(const std::string& path, std::span<const std::uint8_t> bytes) const;

 private:
  std::filesystem::path folder_;
  bool temporary_ = false;
};

}  // namespace zel::simulator

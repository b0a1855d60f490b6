#pragma once

#include <filesystem>
#include <optional>
#include <span>
#include <string>

#include "simulator/wire.h"

namespace zel::simulator {

// A host's path as a relative path below a folder.
// Errors: nothing for an empty or absolute path, for one with an empty, "." or ".." part, and for control characters.
std::optional<std::filesystem::path> safePath(const std::string& path);

// The folder with the card's files.
// Thread: any thread for write(), until end().
class Storage {
 public:
  // folder: created if missing. Empty: a temporary one, which is removed at the end with its content.
  // Errors: ok() is false when it cannot be created.
  explicit Storage(const std::string& folder);
  ~Storage() { end(); }
  Storage(const Storage&) = delete;
  Storage& operator=(const Storage&) = delete;

  bool ok() const { return !folder_.empty(); }
  const std::filesystem::path& folder() const { return folder_; }

  // Removes a temporary folder; later writes fail.
  void end();

  // Creates sub-folders. The file appears under its name when it is complete, and replaces an existing one.
  // Errors: false for an unsafe path, and when the file cannot be written; no partial file is left.
  bool write(const std::string& path, std::span<const std::uint8_t> bytes) const;

 private:
  std::filesystem::path folder_;
  bool temporary_ = false;
};

}  // namespace zel::simulator

#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zel::platform {

// Identifies a file and its content. The inode alone does not suffice, because the inode of a removed file is soon
// reused.
struct FileIdentity {
  dev_t device = 0;
  ino_t node = 0;
  std::int64_t changedSeconds = 0;
  std::int64_t changedNanoseconds = 0;

  bool operator==(const FileIdentity&) const = default;
};

// One file as read. Two equal ones are the same attachment.
struct AccessoryFile {
  bool present = false;
  FileIdentity identity;
  std::string text;
  std::string fault;  // why it could not be read; empty when it was

  bool operator==(const AccessoryFile&) const = default;
};

FileIdentity identityOf(const struct stat& file);

// Whether the name is that of an accessory file: "NAME.json"; a leading dot marks one that is still being written.
bool isAccessoryName(std::string_view name);

// The names of the folder's accessory files, unordered. Empty when the folder cannot be read.
std::vector<std::string> accessoryNames(const std::string& folder);

// Reads a file without blocking. A symbolic link is a fault, because changes of its target are not noticed.
AccessoryFile readAccessoryFile(const std::string& path);

}  // namespace zel::platform

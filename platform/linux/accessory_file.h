#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zel::platform {

// Which file it is, and since when it has its content. A removed file's node is soon given to another, so the node
// alone does not tell.
struct FileIdentity {
  dev_t device = 0;
  ino_t node = 0;
  std::int64_t changedSeconds = 0;
  std::int64_t changedNanoseconds = 0;

  bool operator==(const FileIdentity&) const = default;
};

// One file as it was found. Two equal ones are the same attachment.
struct AccessoryFile {
  bool present = false;
  FileIdentity identity;
  std::string text;
  std::string fault;  // why it could not be read; empty when it was

  bool operator==(const AccessoryFile&) const = default;
};

FileIdentity identityOf(const struct stat& file);

// Whether a file of that name stands for an accessory: "NAME.json", where a leading dot marks one in the making.
bool isAccessoryName(std::string_view name);

// The names in the folder that stand for accessories, in no order. Empty when the folder cannot be read.
std::vector<std::string> accessoryNames(const std::string& folder);

// Reads a file, without ever waiting for it. A symbolic link counts as a fault: its target changes unnoticed.
AccessoryFile readAccessoryFile(const std::string& path);

}  // namespace zel::platform

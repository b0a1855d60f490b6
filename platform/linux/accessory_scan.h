#pragma once

#include <cstdint>
#include <map>
#include <string>

namespace zel::platform {

// Tells one state of a file from the next: a file that is replaced has another inode or another change time.
struct FileFingerprint {
  std::uint64_t inode = 0;
  std::int64_t changed = 0;  // nanoseconds since 1970
  std::int64_t size = 0;
  bool operator==(const FileFingerprint&) const = default;
};

// The accessory files of a folder by name: regular files NAME.json whose name does not start with a dot.
std::map<std::string, FileFingerprint> scanAccessoryFolder(const std::string& folder);

// A file's text, at most `limit` bytes and one more. False when it cannot be read; `fault` then says why.
bool readFile(const std::string& path, std::size_t limit, std::string& text, std::string& fault);

}  // namespace zel::platform

#include "simulator/storage.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <system_error>

namespace zel::simulator {
namespace {

namespace fs = std::filesystem;

fs::path temporaryFolder() {
  std::string pattern = "/tmp/zelcam-sim-storage-XXXXXX";
  return mkdtemp(pattern.data()) != nullptr ? fs::path(pattern) : fs::path();
}

bool isControl(char letter) { return static_cast<unsigned char>(letter) < 0x20 || letter == 0x7F; }

bool writeAll(int file, std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(file, bytes.data(), bytes.size());
    if (written <= 0) return false;
    bytes = bytes.subspan(static_cast<std::size_t>(written));
  }
  return true;
}

}  // namespace

std::optional<fs::path> safePath(const std::string& path) {
  if (path.empty()) return std::nullopt;
  for (const char letter : path) {
    if (isControl(letter)) return std::nullopt;
  }
  fs::path safe;
  for (std::size_t begin = 0; begin <= path.size();) {
    const std::size_t end = std::min(path.find('/', begin), path.size());
    const std::string part = path.substr(begin, end - begin);
    if (part.empty() || part == "." || part == "..") return std::nullopt;
    safe /= part;
    begin = end + 1;
  }
  return safe;
}

Storage::Storage(const std::string& folder) : folder_(folder), temporary_(folder.empty()) {
  if (temporary_) folder_ = temporaryFolder();
  std::error_code fault;
  if (!temporary_) fs::create_directories(folder_, fault);
  if (fault || !fs::is_directory(folder_, fault)) folder_.clear();
}

void Storage::end() {
  std::error_code ignored;
  if (temporary_ && ok()) fs::remove_all(folder_, ignored);
  folder_.clear();
}

bool Storage::write(const std::string& path, std::span<const std::uint8_t> bytes) const {
  const auto safe = safePath(path);
  if (!safe || !ok()) return false;
  const fs::path target = folder_ / *safe;
  std::error_code fault;
  fs::create_directories(target.parent_path(), fault);
  std::string hidden = (target.parent_path() / ".upload-XXXXXX").string();
  const int file = fault ? -1 : mkstemp(hidden.data());
  if (file < 0) return false;
  bool whole = writeAll(file, bytes);
  whole = close(file) == 0 && whole;
  if (whole) fs::rename(hidden, target, fault);
  if (whole && !fault) return true;
  unlink(hidden.c_str());
  return false;
}

}  // namespace zel::simulator

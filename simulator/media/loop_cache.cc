#include "simulator/media/loop_cache.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace zel::simulator {
namespace {

constexpr std::uintmax_t kLargestCachedLoop = 512u << 20;  // bytes

Bytes contentsOf(const std::string& path) {
  std::error_code fault;
  const std::uintmax_t size = std::filesystem::file_size(path, fault);
  if (fault || size > kLargestCachedLoop) return {};
  std::ifstream file(path, std::ios::binary);
  Bytes bytes(static_cast<std::size_t>(size));
  file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(size));
  return file ? bytes : Bytes();
}

}  // namespace

std::string LoopCache::standardFolder() {
  if (const char* cache = std::getenv("XDG_CACHE_HOME"); cache != nullptr && cache[0] == '/')
    return std::string(cache) + "/zelcam-sim";
  if (const char* home = std::getenv("HOME"); home != nullptr && home[0] == '/')
    return std::string(home) + "/.cache/zelcam-sim";
  return {};
}

Bytes LoopCache::find(const std::string& name) const {
  return folder_.empty() ? Bytes() : contentsOf(folder_ + "/" + name);
}

void LoopCache::keep(const std::string& name, const Bytes& content) const {
  if (folder_.empty()) return;
  std::error_code fault;
  std::filesystem::create_directories(folder_, fault);
  const std::string whole = folder_ + "/" + name;
  std::string part = whole + ".XXXXXX";
  const int descriptor = mkstemp(part.data());
  if (descriptor < 0) return;
  close(descriptor);
  std::ofstream file(part, std::ios::binary);
  file.write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(content.size()));
  file.close();
  if (file) std::filesystem::rename(part, whole, fault);
  if (!file || fault) std::filesystem::remove(part, fault);
}

}  // namespace zel::simulator

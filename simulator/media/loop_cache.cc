#include "simulator/media/loop_cache.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace zel::simulator {
namespace {

constexpr std::uintmax_t kLargestFile = 512u << 20;  // bytes

Bytes contentsOf(const std::string& path) {
  std::error_code fault;
  const std::uintmax_t size = std::filesystem::file_size(path, fault);
  if (fault || size > kLargestFile) return {};
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

std::string LoopCache::fileOf(const PreviewFormat& format) const {
  return folder_ + "/scene-" + std::to_string(format.width) + "x" + std::to_string(format.height) + "-" +
         std::to_string(format.rate) + ".h264";
}

std::vector<VideoPicture> LoopCache::find(const PreviewFormat& format, const VideoPicture& first,
                                          std::size_t length) const {
  if (folder_.empty()) return {};
  std::vector<VideoPicture> pictures = picturesIn(contentsOf(fileOf(format)));
  if (pictures.size() != length || pictures.front().bytes != first.bytes) return {};
  return pictures;
}

void LoopCache::keep(const PreviewFormat& format, const std::vector<VideoPicture>& pictures) const {
  if (folder_.empty()) return;
  std::error_code fault;
  std::filesystem::create_directories(folder_, fault);
  const std::string whole = fileOf(format), part = whole + "." + std::to_string(getpid());
  std::ofstream file(part, std::ios::binary);
  for (const VideoPicture& picture : pictures)
    file.write(reinterpret_cast<const char*>(picture.bytes.data()), static_cast<std::streamsize>(picture.bytes.size()));
  file.close();
  if (file) std::filesystem::rename(part, whole, fault);
  if (!file || fault) std::filesystem::remove(part, fault);
}

}  // namespace zel::simulator

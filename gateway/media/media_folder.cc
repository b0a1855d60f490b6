#include "gateway/media/media_folder.h"

#include <dirent.h>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <utility>

#include "gateway/json/printable.h"
#include "gateway/media/file.h"
#include "platform/linux/files/temporary_file.h"

namespace zel::gateway {
namespace {

constexpr std::size_t kLongestName = 255;

constexpr std::pair<std::string_view, std::string_view> kMediaTypes[] = {
    {".jpg", "image/jpeg"},  {".jpeg", "image/jpeg"}, {".png", "image/png"},
    {".webp", "image/webp"}, {".heic", "image/heic"}, {".mp4", "video/mp4"},
    {".ts", "video/mp2t"},   {".flv", "video/x-flv"}, {".m3u8", "application/vnd.apple.mpegurl"},
};

std::string lowerExtension(std::string_view name) {
  std::string extension = std::filesystem::path(name).extension().string();
  std::ranges::transform(extension, extension.begin(), [](unsigned char letter) { return std::tolower(letter); });
  return extension;
}

// "IMG_1-360.jpg", also with a number behind it.
bool isPanoramaName(std::string_view name) {
  std::string stem = std::filesystem::path(name).stem().string();
  const std::size_t dash = stem.rfind('-');
  const auto isDigit = [](char letter) { return letter >= '0' && letter <= '9'; };
  if (stem.ends_with(kPanoramaMark)) return true;
  if (dash == std::string::npos || dash + 1 == stem.size() ||
      !std::all_of(stem.begin() + static_cast<long>(dash) + 1, stem.end(), isDigit))
    return false;
  return std::string_view(stem).substr(0, dash).ends_with(kPanoramaMark);
}

MediaFile described(std::string_view name, const struct stat& file) {
  constexpr std::int64_t kNanoseconds = 1'000'000'000;
  return {std::string(name), static_cast<std::uint64_t>(file.st_size),
          file.st_mtim.tv_sec * kNanoseconds + file.st_mtim.tv_nsec, isPanoramaName(name)};
}

}  // namespace

std::string MediaFile::tag() const { return fmt::format("\"{:x}-{:x}\"", bytes, changed); }

bool isPlainName(std::string_view name) {
  return !name.empty() && name.front() != '.' && name.size() <= kLongestName &&
         name.find('/') == std::string_view::npos && withoutUnprintable(name) == name;
}

std::string_view mediaTypeOf(std::string_view name) {
  const std::string extension = lowerExtension(name);
  for (const auto& [ending, type] : kMediaTypes) {
    if (extension == ending) return type;
  }
  return "application/octet-stream";
}

std::unique_ptr<MediaFolder> MediaFolder::open(const std::string& path, std::string& error) {
  if (!prepareFolder(path, error)) return nullptr;
  platform::UniqueDescriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!folder) {
    error = fmt::format("cannot read {}: {}", path, std::strerror(errno));
    return nullptr;
  }
  removeLeftovers(path);
  return std::unique_ptr<MediaFolder>(new MediaFolder(path, std::move(folder)));
}

std::vector<MediaFile> MediaFolder::files() const {
  std::vector<MediaFile> all;
  const std::unique_ptr<DIR, int (*)(DIR*)> entries(::opendir(path_.c_str()), ::closedir);
  if (!entries) return all;
  while (const dirent* const entry = ::readdir(entries.get())) {
    struct stat file {};
    if (!isPlainName(entry->d_name)) continue;
    if (::fstatat(folder_.get(), entry->d_name, &file, AT_SYMLINK_NOFOLLOW) != 0 || !S_ISREG(file.st_mode)) continue;
    all.push_back(described(entry->d_name, file));
  }
  std::ranges::sort(all, {}, &MediaFile::name);
  return all;
}

// A pipe that somebody has put there must not be waited for.
std::optional<OpenMediaFile> MediaFolder::find(std::string_view name) const {
  if (!isPlainName(name)) return std::nullopt;
  const std::string plain(name);
  platform::UniqueDescriptor opened(
      ::openat(folder_.get(), plain.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  struct stat file {};
  if (!opened || ::fstat(opened.get(), &file) != 0 || !S_ISREG(file.st_mode)) return std::nullopt;
  return OpenMediaFile{described(name, file), std::move(opened)};
}

bool MediaFolder::remove(std::string_view name) {
  if (!find(name)) {
    errno = ENOENT;
    return false;
  }
  return ::unlinkat(folder_.get(), std::string(name).c_str(), 0) == 0;
}

std::optional<MediaFile> MediaFolder::saved(const std::string& name, std::span<const std::uint8_t> bytes,
                                            std::string& error) {
  const auto path = saveFile(path_, name, bytes, error);
  if (!path) return std::nullopt;
  auto stored = find(std::filesystem::path(*path).filename().string());
  if (!stored) error = fmt::format("{} has gone as soon as it was stored", *path);
  return stored ? std::optional(std::move(stored->file)) : std::nullopt;
}

std::optional<MediaFile> MediaFolder::store(std::string_view cameraName, std::span<const std::uint8_t> bytes,
                                            std::string& error) {
  return saved(photoFileName(cameraName), bytes, error);
}

std::optional<MediaFile> MediaFolder::storePanorama(const std::string& photo, std::span<const std::uint8_t> bytes,
                                                    std::string& error) {
  return saved(panoramaFileName(photo), bytes, error);
}

}  // namespace zel::gateway

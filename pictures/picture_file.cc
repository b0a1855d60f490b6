#include <ZELTarkaSDK/PictureFile.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include "pictures/jpeg_file.h"

#include "platform/linux/files/temporary_file.h"

namespace zel {
namespace {

// Whole or not at all.
bool replaceFile(const std::string& path, std::span<const std::uint8_t> bytes) {
  const std::string folder = std::filesystem::path(path).parent_path().string();
  TemporaryFile file(folder.empty() ? "." : folder);
  return file.isThere() && file.write(bytes) && file.replace(path);
}

}  // namespace

std::optional<PictureForm> pictureFormOf(const std::string& path) {
  std::string extension = std::filesystem::path(path).extension().string();
  std::ranges::transform(extension, extension.begin(), [](unsigned char letter) { return std::tolower(letter); });
  if (extension == ".png") return PictureForm::png;
  if (extension == ".jpg" || extension == ".jpeg") return PictureForm::jpeg;
  return std::nullopt;
}

bool savePicture(const platform::PixelBuffer& picture, const std::string& path, std::string& error) {
  const auto file = pictureFormOf(path) == PictureForm::jpeg ? jpegOf(picture, kJpegQuality) : pngOf(picture);
  error = "the picture does not fit into memory or its format";
  if (!file) return false;
  if (replaceFile(path, *file)) return true;
  error = "cannot write " + path + ": " + std::strerror(errno);
  return false;
}

}  // namespace zel

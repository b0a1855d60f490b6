#include "apps/zelcam/host/picture_file.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

#include "apps/zelcam/host/file.h"
#include "apps/zelcam/host/png.h"
#include "pictures/jpeg_file.h"

namespace zel::app {
namespace {

constexpr int kQuality = 95;

}  // namespace

std::optional<PictureForm> pictureFormOf(const std::string& path) {
  std::string extension = std::filesystem::path(path).extension().string();
  std::ranges::transform(extension, extension.begin(), [](unsigned char letter) { return std::tolower(letter); });
  if (extension == ".png") return PictureForm::png;
  if (extension == ".jpg" || extension == ".jpeg") return PictureForm::jpeg;
  return std::nullopt;
}

bool savePicture(const platform::PixelBuffer& picture, const std::string& path, std::string& error) {
  const auto file = pictureFormOf(path) == PictureForm::jpeg ? jpegOf(picture, kQuality) : pngOf(picture);
  error = "the picture does not fit into memory or its format";
  return file && replaceFile(path, *file, error);
}

}  // namespace zel::app

#include "gateway/media/file.h"

#include <ZELTarkaSDK/PictureFile.h>

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <vector>

#include "gateway/json/printable.h"
#include "platform/linux/files/temporary_file.h"

namespace zel::gateway {
namespace {

constexpr int kMostNames = 10000;

std::string faultOf(std::string_view doing, std::string_view path) {
  return fmt::format("cannot {} {}: {}", doing, path, std::strerror(errno));
}

constexpr std::string_view kPictureExtensions[] = {".jpg", ".jpeg", ".png",  ".dng",  ".raw",
                                                   ".tif", ".tiff", ".heic", ".heif", ".webp"};

bool isPictureExtension(std::string extension) {
  std::ranges::transform(extension, extension.begin(), [](unsigned char letter) { return std::tolower(letter); });
  return std::ranges::find(kPictureExtensions, extension) != std::end(kPictureExtensions);
}

std::size_t longestNameIn(const std::string& folder) {
  const long most = ::pathconf(folder.c_str(), _PC_NAME_MAX);
  return most > 0 ? static_cast<std::size_t>(most) : NAME_MAX;
}

std::string numbered(const std::string& name, int number, std::size_t most) {
  return fileNameWith(name, number == 1 ? "" : fmt::format("-{}", number), most);
}

constexpr std::size_t kReadAtOnce = 1 << 20;  // bytes of a file whose size is not known

}  // namespace

std::optional<ZELData> readFile(const std::string& path, std::string& error, std::uint64_t most) {
  std::error_code fault;
  if (std::filesystem::is_directory(path, fault)) {
    error = path + " is a folder";
    return std::nullopt;
  }
  const std::uint64_t size = std::filesystem::file_size(path, fault);
  const auto isTooLarge = [&](std::uint64_t bytes) {
    if (bytes > most)
      error = fmt::format("{} has {} bytes; one frame to the camera carries {} of them at most", path, bytes, most);
    return bytes > most;
  };
  if (!fault && isTooLarge(size)) return std::nullopt;
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  std::vector<std::uint8_t> bytes(fault ? 0 : size);  // at once, because growing would take as much memory again
  std::size_t held = 0;
  while (file.peek() != std::ifstream::traits_type::eof()) {
    if (isTooLarge(held)) return std::nullopt;
    if (held == bytes.size()) bytes.resize(held + kReadAtOnce);
    file.read(reinterpret_cast<char*>(bytes.data() + held), static_cast<std::streamsize>(bytes.size() - held));
    held += static_cast<std::size_t>(file.gcount());
  }
  if (isTooLarge(held)) return std::nullopt;
  bytes.resize(held);
  if (file.is_open() && !file.bad()) return ZELData(std::move(bytes));
  error = faultOf("read", path);
  return std::nullopt;
}

std::string photoFileName(std::string_view name) {
  name.remove_prefix(std::min(name.size(), name.find_last_of("/\\") + 1));
  std::string plain = gateway::withoutUnprintable(name);
  plain.erase(0, std::min(plain.size(), plain.find_first_not_of('.')));
  if (plain.empty()) return "photo.jpg";
  return isPictureExtension(std::filesystem::path(plain).extension().string()) ? plain : plain + ".jpg";
}

std::string fileNameWith(const std::string& name, std::string_view text, std::size_t most) {
  const std::filesystem::path plain(name);
  std::string stem = plain.stem().string(), extension = plain.extension().string();
  if (extension.size() + text.size() >= most) extension.clear();
  const std::size_t left = most - std::min(most, extension.size() + text.size());
  const auto isWithin = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; };
  if (stem.size() > left) {
    std::size_t end = left;
    while (end > 0 && isWithin(stem[end])) --end;
    stem.resize(end);
  }
  return stem.append(text).append(extension);
}

std::string panoramaFileName(const std::string& photo) {
  std::filesystem::path path(photo);
  if (pictureFormOf(photo) != PictureForm::jpeg) path.replace_extension(".jpg");
  return fileNameWith(path.string(), kPanoramaMark, NAME_MAX);
}

bool prepareFolder(const std::string& folder, std::string& error) {
  std::error_code fault;
  std::filesystem::create_directories(folder, fault);
  if (fault) {
    error = fmt::format("cannot write into {}: {}", folder, fault.message());
  } else if (::access(folder.c_str(), W_OK) != 0) {
    error = faultOf("write into", folder);
  } else {
    return true;
  }
  return false;
}

std::optional<std::string> saveFile(const std::string& folder, const std::string& name,
                                    std::span<const std::uint8_t> bytes, std::string& error) {
  if (!prepareFolder(folder, error)) return std::nullopt;
  TemporaryFile file(folder);
  if (!file.isThere() || !file.write(bytes)) {
    error = faultOf("write into", folder);
    return std::nullopt;
  }
  const std::size_t longest = longestNameIn(folder);
  for (int number = 1; number <= kMostNames; ++number) {
    std::string path = (std::filesystem::path(folder) / numbered(name, number, longest)).string();
    if (file.appearAs(path)) return path;
    if (errno == EEXIST) continue;
    error = faultOf("write", path);
    return std::nullopt;
  }
  error = fmt::format("{} has {} files named like {} already", folder, kMostNames, name);
  return std::nullopt;
}

}  // namespace zel::gateway

#include "apps/zelcam/file.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <vector>

namespace zel::app {
namespace {

constexpr int kMostNames = 10000;
constexpr mode_t kFileMode = 0644;

std::string faultOf(std::string_view doing, std::string_view path) {
  return fmt::format("cannot {} {}: {}", doing, path, std::strerror(errno));
}

bool writeAll(int file, std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t count = ::write(file, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
  return ::fsync(file) == 0;
}

// A file that is removed again unless it was given its name.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& folder) : path_(folder + "/.zelcam-XXXXXX") {
    file_ = ::mkstemp(path_.data());
  }
  ~TemporaryFile() {
    if (file_ < 0) return;
    ::close(file_);
    ::unlink(path_.c_str());
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  bool write(std::span<const std::uint8_t> bytes) {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return file_ >= 0 && writeAll(file_, bytes) && ::fchmod(file_, kFileMode & ~mask) == 0;
  }

  bool replace(const std::string& path) { return ::rename(path_.c_str(), path.c_str()) == 0; }

  // Never replaces a file. Where the file system knows no links, the name is taken by an empty file first.
  bool appearAs(const std::string& path) {
    if (::link(path_.c_str(), path.c_str()) == 0) return true;
    if (errno != EPERM && errno != EOPNOTSUPP) return false;
    const int taken = ::open(path.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, kFileMode);
    if (taken < 0) return false;
    ::close(taken);
    return ::rename(path_.c_str(), path.c_str()) == 0;
  }

 private:
  std::string path_;
  int file_ = -1;
};

std::string numbered(const std::string& name, int number) {
  if (number == 1) return name;
  const std::filesystem::path plain(name);
  return fmt::format("{}-{}{}", plain.stem().string(), number, plain.extension().string());
}

}  // namespace

std::optional<ZELData> readFile(const std::string& path, std::string& error) {
  std::error_code fault;
  if (std::filesystem::is_directory(path, fault)) {
    error = path + " is a folder";
    return std::nullopt;
  }
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (file.is_open() && !file.bad()) return ZELData(std::move(bytes));
  error = faultOf("read", path);
  return std::nullopt;
}

std::string plainFileName(std::string_view name, std::string_view otherwise) {
  name.remove_prefix(std::min(name.size(), name.find_last_of("/\\") + 1));
  std::string plain(name);
  std::erase_if(plain, [](char letter) { return static_cast<unsigned char>(letter) < 0x20 || letter == 0x7F; });
  if (plain.empty() || plain == "." || plain == "..") return std::string(otherwise);
  return plain;
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
  if (!file.write(bytes)) {
    error = faultOf("write into", folder);
    return std::nullopt;
  }
  for (int number = 1; number <= kMostNames; ++number) {
    std::string path = (std::filesystem::path(folder) / numbered(name, number)).string();
    if (file.appearAs(path)) return path;
    if (errno == EEXIST) continue;
    error = faultOf("write", path);
    return std::nullopt;
  }
  error = fmt::format("{} has {} files named like {} already", folder, kMostNames, name);
  return std::nullopt;
}

bool replaceFile(const std::string& path, std::span<const std::uint8_t> bytes, std::string& error) {
  const std::string folder = std::filesystem::path(path).parent_path().string();
  TemporaryFile file(folder.empty() ? "." : folder);
  if (file.write(bytes) && file.replace(path)) return true;
  error = faultOf("write", path);
  return false;
}

}  // namespace zel::app

#include "platform/linux/accessory_scan.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>
#include <string_view>

namespace zel::platform {
namespace {

bool isAccessoryName(std::string_view name) {
  constexpr std::string_view kSuffix = ".json";
  return name.size() > kSuffix.size() && name.ends_with(kSuffix) && name.front() != '.';
}

std::int64_t nanoseconds(const timespec& time) { return time.tv_sec * 1'000'000'000 + time.tv_nsec; }

}  // namespace

std::map<std::string, FileFingerprint> scanAccessoryFolder(const std::string& folder) {
  std::map<std::string, FileFingerprint> files;
  const std::unique_ptr<DIR, int (*)(DIR*)> directory(opendir(folder.c_str()), &closedir);
  if (!directory) return files;
  while (const dirent* entry = readdir(directory.get())) {  // NOLINT(concurrency-mt-unsafe): one reader per DIR
    struct stat status {};
    if (!isAccessoryName(entry->d_name)) continue;
    if (fstatat(dirfd(directory.get()), entry->d_name, &status, AT_SYMLINK_NOFOLLOW) != 0) continue;
    if (!S_ISREG(status.st_mode)) continue;
    files[entry->d_name] = {status.st_ino, nanoseconds(status.st_ctim), status.st_size};
  }
  return files;
}

bool readFile(const std::string& path, std::size_t limit, std::string& text, std::string& fault) {
  const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
  text.resize(limit + 1);
  std::size_t held = 0;
  ssize_t count = file < 0 ? -1 : 1;
  while (count > 0 && held < text.size()) {
    count = ::read(file, text.data() + held, text.size() - held);
    if (count > 0) held += static_cast<std::size_t>(count);
  }
  if (count < 0) fault = std::string("it cannot be read: ") + std::strerror(errno);
  if (file >= 0) ::close(file);
  text.resize(held);
  return count >= 0;
}

}  // namespace zel::platform

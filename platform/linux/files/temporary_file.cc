#include "platform/linux/files/temporary_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <random>
#include <string_view>
#include <system_error>

namespace zel {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kBegin = ".zelcam-";
constexpr std::string_view kLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
constexpr std::size_t kRandomLetters = 6;
constexpr int kMostAttempts = 100;
constexpr mode_t kFileMode = 0644;

std::string randomName() {
  std::random_device random;
  std::uniform_int_distribution<std::size_t> letter(0, kLetters.size() - 1);
  std::string name(kBegin);
  for (std::size_t i = 0; i < kRandomLetters; ++i) name += kLetters[letter(random)];
  return name;
}

bool isTemporaryName(std::string_view name) {
  return name.size() == kBegin.size() + kRandomLetters && name.starts_with(kBegin) &&
         name.find_first_not_of(kLetters, kBegin.size()) == std::string_view::npos;
}

bool lock(int file, int how) {
  int result = 0;
  do {
    result = ::flock(file, how);
  } while (result != 0 && errno == EINTR);
  return result == 0;
}

// Between creation and locking another process may have removed it as a leftover.
bool isStillThere(int file) {
  struct stat found {};
  return ::fstat(file, &found) == 0 && found.st_nlink > 0;
}

// A file in use by another program is locked. A file that cannot be locked is treated as in use.
void removeUnlessHeld(const std::string& path) {
  const int file = ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
  if (file < 0) return;
  struct stat found {};
  if (::fstat(file, &found) == 0 && S_ISREG(found.st_mode) && found.st_uid == ::geteuid() &&
      lock(file, LOCK_EX | LOCK_NB)) {
    ::unlink(path.c_str());
  }
  ::close(file);
}

}  // namespace

TemporaryFile::TemporaryFile(const std::string& folder, mode_t mode) {
  removeLeftovers(folder);
  for (int attempt = 0; attempt < kMostAttempts; ++attempt) {
    path_ = (fs::path(folder) / randomName()).string();
    const int made = ::open(path_.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, mode);
    if (made < 0 && errno == EEXIST) continue;
    if (made < 0) return;
    lock(made, LOCK_EX);
    if (isStillThere(made)) {
      file_ = made;
      return;
    }
    ::close(made);
  }
}

TemporaryFile::~TemporaryFile() {
  if (file_ < 0) return;
  if (!path_.empty()) ::unlink(path_.c_str());
  ::close(file_);
}

bool TemporaryFile::write(std::span<const std::uint8_t> bytes) const {
  while (!bytes.empty()) {
    const ssize_t count = ::write(file_, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
  return true;
}

bool TemporaryFile::replace(const std::string& path) {
  if (::fsync(file_) != 0 || ::rename(path_.c_str(), path.c_str()) != 0) return false;
  path_.clear();
  return true;
}

// On a file system without hard links, an empty file first reserves the name.
bool TemporaryFile::appearAs(const std::string& path) {
  if (::fsync(file_) != 0) return false;
  if (::link(path_.c_str(), path.c_str()) == 0) return true;
  if (errno != EPERM && errno != EOPNOTSUPP) return false;
  const int taken = ::open(path.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, kFileMode);
  if (taken < 0) return false;
  ::close(taken);
  if (::rename(path_.c_str(), path.c_str()) != 0) return false;
  path_.clear();
  return true;
}

void removeLeftovers(const std::string& folder) {
  std::error_code fault;
  for (fs::directory_iterator entry(folder, fault), end; !fault && entry != end; entry.increment(fault)) {
    if (isTemporaryName(entry->path().filename().string())) removeUnlessHeld(entry->path().string());
  }
}

}  // namespace zel

#include "outputs/disk_sync.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

namespace zel {
namespace {

bool isPlainFile(int file) {
  struct stat found {};
  return ::fstat(file, &found) == 0 && S_ISREG(found.st_mode);
}

// Some file systems do not support syncing a folder, and report an error.
void syncFolder(const std::string& folder) {
  const int file = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (file < 0) return;
  ::fsync(file);
  ::close(file);
}

}  // namespace

DiskSync::~DiskSync() {
  if (file_ >= 0) ::close(file_);
}

int DiskSync::open(const std::string& path) {
  file_ = ::open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
  if (file_ < 0) return errno;
  syncFolder(std::filesystem::absolute(path).parent_path().string());
  return 0;
}

int DiskSync::sync() const { return file_ < 0 || !isPlainFile(file_) || ::fdatasync(file_) == 0 ? 0 : errno; }

}  // namespace zel

#include "platform/linux/accessory_file.h"

#include <dirent.h>
#include <fcntl.h>

#include <cerrno>
#include <memory>

#include "platform/linux/accessory_description.h"
#include "platform/linux/error_text.h"
#include "platform/linux/unique_descriptor.h"

namespace zel::platform {
namespace {

// Reads one byte more than allowed, to detect a file that is too large.
bool readAll(int descriptor, std::string& text) {
  text.resize(kLargestAccessoryFile + 1);
  std::size_t held = 0;
  while (held < text.size()) {
    const ssize_t count = read(descriptor, text.data() + held, text.size() - held);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return false;
    if (count == 0) break;
    held += static_cast<std::size_t>(count);
  }
  text.resize(held);
  return true;
}

std::string whyUnreadable(int code) {
  return code == ELOOP ? "is a symbolic link" : "cannot be read: " + errorText(code);
}

}  // namespace

FileIdentity identityOf(const struct stat& file) {
  return {.device = file.st_dev,
          .node = file.st_ino,
          .changedSeconds = file.st_mtim.tv_sec,
          .changedNanoseconds = file.st_mtim.tv_nsec};
}

bool isAccessoryName(std::string_view name) { return name.ends_with(".json") && !name.starts_with('.'); }

std::vector<std::string> accessoryNames(const std::string& folder) {
  std::vector<std::string> names;
  const auto closeFolder = [](DIR* open) { closedir(open); };
  const std::unique_ptr<DIR, decltype(closeFolder)> open(opendir(folder.c_str()), closeFolder);
  if (!open) return names;
  while (const dirent* entry = readdir(open.get())) {
    if (isAccessoryName(entry->d_name)) names.emplace_back(entry->d_name);
  }
  return names;
}

AccessoryFile readAccessoryFile(const std::string& path) {
  AccessoryFile file;
  // Non-blocking, because opening a pipe of that name would block the caller.
  const UniqueDescriptor open(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY | O_CLOEXEC));
  if (!open && (errno == ENOENT || errno == ENOTDIR)) return file;
  file.present = true;
  struct stat found = {};
  if (!open || fstat(open.get(), &found) != 0) {
    file.fault = whyUnreadable(errno);
    return file;
  }
  file.identity = identityOf(found);
  if (!S_ISREG(found.st_mode)) {
    file.fault = "is not a plain file";
  } else if (!readAll(open.get(), file.text)) {
    file.fault = whyUnreadable(errno);
  }
  return file;
}

}  // namespace zel::platform

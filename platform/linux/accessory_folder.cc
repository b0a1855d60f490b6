#include "platform/linux/accessory_folder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string_view>

#include "platform/linux/error_text.h"

namespace zel::platform {
namespace {

constexpr mode_t kOwnerOnly = 0700;

std::string variable(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

// "/a/b/" and "/a/b" are one folder, but only the second lets lstat see a link.
std::string_view withoutTrailingSlashes(std::string_view path) {
  while (path.size() > 1 && path.back() == '/') path.remove_suffix(1);
  return path;
}

// What is wrong with the folder, as the end of a sentence; empty when nothing is.
std::string faultOf(const std::string& path) {
  struct stat link = {};
  struct stat folder = {};
  if (lstat(path.c_str(), &link) != 0 || stat(path.c_str(), &folder) != 0) {
    return "cannot be used: " + errorText(errno) + "; choose another folder";
  }
  if (!S_ISDIR(folder.st_mode)) return "is not a folder; choose another one or remove it";
  if (link.st_uid != geteuid() || folder.st_uid != geteuid()) {
    return "belongs to another user; choose a folder of your own";
  }
  if ((folder.st_mode & (S_IWGRP | S_IWOTH)) != 0) return "can be written by others; run: chmod go-w " + path;
  return {};
}

}  // namespace

int makeFolders(std::string_view path) {
  for (std::size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
    const std::string folder(path.substr(0, end));
    if (mkdir(folder.c_str(), kOwnerOnly) != 0 && errno != EEXIST) {
      const int code = errno;
      struct stat known = {};
      // A folder above may be one where nothing can be made, as long as the next one is there.
      if (stat(folder.c_str(), &known) != 0) return code;
    }
    if (end == std::string_view::npos) return 0;
  }
}

std::string accessoryFolderPath(const std::string& chosen) {
  if (!chosen.empty()) return chosen;
  if (std::string named = variable("ZEL_ACCESSORIES"); !named.empty()) return named;
  if (const std::string runtime = variable("XDG_RUNTIME_DIR"); runtime.starts_with('/')) {
    return runtime + "/zel/accessories";
  }
  return "/tmp/zel-accessories-" + std::to_string(geteuid());
}

bool prepareAccessoryFolder(const std::string& path, std::string& error) {
  const std::string folder(withoutTrailingSlashes(path));
  std::string fault;
  if (const int code = makeFolders(folder); code != 0) {
    fault = "cannot be made: " + errorText(code) + "; choose another folder";
  } else {
    fault = faultOf(folder);
  }
  if (fault.empty()) return true;
  error = "accessory folder " + path + " " + fault;
  return false;
}

}  // namespace zel::platform

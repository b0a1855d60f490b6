#include "platform/linux/accessory_folder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string_view>
#include <system_error>

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

// What is wrong with the folder, as the end of a sentence; empty when it is usable.
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
  if ((folder.st_mode & (S_IWGRP | S_IWOTH)) == 0) return {};
  // A shared folder such as /tmp must keep its permissions.
  if ((folder.st_mode & (S_ISVTX | S_ISGID)) != 0) return "is shared with others; choose a folder of your own";
  return "can be written by others; run: chmod go-w " + path;
}

// Only the folder and its parent are created, for the default "zel/accessories". If more is missing, the path is
// probably mistyped, and no camera would appear there.
std::string missingFolderOf(const std::string& path) {
  std::error_code ignored;
  const auto above = std::filesystem::path(path).parent_path().parent_path();
  return above.empty() || std::filesystem::exists(above, ignored) ? "" : above.string();
}

}  // namespace

int makeFolders(std::string_view path) {
  for (std::size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
    const std::string folder(path.substr(0, end));
    if (mkdir(folder.c_str(), kOwnerOnly) != 0 && errno != EEXIST) {
      const int code = errno;
      struct stat known = {};
      // A parent may be read-only, as long as the next folder exists.
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

std::string realFolder(const std::string& path) {
  const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr), &std::free);
  return real ? real.get() : path;
}

bool prepareAccessoryFolder(const std::string& path, std::string& error) {
  const std::string folder(withoutTrailingSlashes(path));
  std::string fault;
  if (const std::string missing = missingFolderOf(folder); !missing.empty()) {
    fault = "cannot be made: there is no " + missing + "; choose another folder";
  } else if (const int code = makeFolders(folder); code != 0) {
    fault = "cannot be made: " + errorText(code) + "; choose another folder";
  } else {
    fault = faultOf(folder);
  }
  if (fault.empty()) return true;
  error = "accessory folder " + path + " " + fault;
  return false;
}

}  // namespace zel::platform

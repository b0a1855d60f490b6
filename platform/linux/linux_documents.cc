#include "platform/linux/linux_documents.h"

#include <cstdlib>

#include "platform/linux/accessory_folder.h"

namespace zel::platform {
namespace {

// The folder of a variable; only absolute paths are used.
std::string folderIn(const char* variable) {
  const char* const value = std::getenv(variable);
  return value != nullptr && value[0] == '/' ? value : "";
}

std::string documentsPath(const std::string& chosen) {
  if (!chosen.empty()) return chosen;
  if (const std::string data = folderIn("XDG_DATA_HOME"); !data.empty()) return data + "/zelcam";
  if (const std::string home = folderIn("HOME"); !home.empty()) return home + "/.local/share/zelcam";
  return {};
}

}  // namespace

LinuxDocuments::LinuxDocuments(const std::string& chosen) : path_(documentsPath(chosen)) {}

std::string LinuxDocuments::folder() { return !path_.empty() && makeFolders(path_) == 0 ? path_ : std::string(); }

}  // namespace zel::platform

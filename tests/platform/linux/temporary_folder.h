#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace zel::test {

// A folder of one test, gone with it.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "zel-test-XXXXXX").string();
    path_ = mkdtemp(pattern.data()) != nullptr ? pattern : std::string();
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::string& path() const { return path_; }
  std::string file(const std::string& name) const { return path_ + "/" + name; }

  void write(const std::string& name, const std::string& text) const { std::ofstream(file(name)) << text; }

  // Puts the file there whole, the way an accessory is plugged in.
  void place(const std::string& name, const std::string& text) const {
    write("." + name + ".part", text);
    std::filesystem::rename(file("." + name + ".part"), file(name));
  }

  void remove(const std::string& name) const { std::filesystem::remove(file(name)); }

 private:
  std::string path_;
};

}  // namespace zel::test

#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <system_error>

#include "simulator/wire.h"

namespace zel::simulator {

// A folder of its own for each test, removed afterwards.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string pattern = "/tmp/zel-sim-test-XXXXXX";
    path_ = mkdtemp(pattern.data());
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

inline std::optional<Bytes> contentOf(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return std::nullopt;
  const std::string text{std::istreambuf_iterator<char>(in), {}};
  return Bytes(text.begin(), text.end());
}

inline std::size_t entriesIn(const std::filesystem::path& folder) {
  std::size_t count = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::recursive_directory_iterator(folder)) ++count;
  return count;
}

}  // namespace zel::simulator

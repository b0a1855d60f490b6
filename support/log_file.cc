#include "support/log_file.h"

#include <cstdio>
#include <filesystem>
#include <memory>
#include <system_error>

namespace zel {
namespace {

constexpr int kMostNames = 100;  // attempts to find a temporary name that is not in use

struct Closer {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, Closer>;

// False when not all bytes were written.
bool writeAndClose(File file, std::span<const std::uint8_t> bytes) {
  const bool written = bytes.empty() || std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
  return std::fclose(file.release()) == 0 && written;
}

// A new file next to that one; "x" fails if the name is in use.
File makeTemporary(const std::string& path, std::string& name) {
  for (int number = 0; number < kMostNames; ++number) {
    name = path + "." + std::to_string(number) + ".part";
    if (File file{std::fopen(name.c_str(), "wbx")}) return file;
  }
  return nullptr;
}

// A regular file is opened only for appending, which needs no read permission. Anything else is also opened for
// reading, because opening a pipe would otherwise block.
File openExisting(const std::string& path) {
  std::error_code ignored;
  if (std::filesystem::is_regular_file(path, ignored)) return File{std::fopen(path.c_str(), "ab")};
  return File{std::fopen(path.c_str(), "r+b")};
}

void replaceFile(const std::string& path, std::span<const std::uint8_t> bytes) {
  std::string name;
  File file = makeTemporary(path, name);
  if (!file) return;
  std::error_code fault;
  if (writeAndClose(std::move(file), bytes)) {
    std::filesystem::rename(name, path, fault);
    if (!fault) return;
  }
  std::filesystem::remove(name, fault);
}

}  // namespace

void appendToFile(const std::string& path, std::span<const std::uint8_t> bytes) {
  if (File file = openExisting(path)) {
    if (std::fseek(file.get(), 0, SEEK_END) == 0) writeAndClose(std::move(file), bytes);
    return;
  }
  replaceFile(path, bytes);
}

}  // namespace zel

#include "outputs/segments.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <vector>

namespace zel {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kExtension = ".ts";
constexpr std::size_t kLeastDigits = 5;

bool isSegment(const std::string& name, const std::string& stem) {
  const std::string begin = stem + "-";
  if (!name.starts_with(begin) || !name.ends_with(kExtension)) return false;
  if (name.size() < begin.size() + kLeastDigits + kExtension.size()) return false;
  const std::string_view number =
      std::string_view(name).substr(begin.size(), name.size() - begin.size() - kExtension.size());
  return std::ranges::all_of(number, [](char letter) { return letter >= '0' && letter <= '9'; });
}

}  // namespace

std::string segmentPattern(const std::string& playlist) {
  std::string pattern;
  for (const char letter : (fs::path(playlist).parent_path() / fs::path(playlist).stem()).string()) {
    pattern += letter == '%' ? "%%" : std::string(1, letter);
  }
  return pattern + "-%05d" + std::string(kExtension);
}

void forgetSegments(const std::string& playlist) {
  const fs::path path(playlist);
  const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
  std::error_code fault;
  if (!fs::is_regular_file(path, fault)) return;
  std::vector<fs::path> old;
  for (fs::directory_iterator entry(folder, fault), end; !fault && entry != end; entry.increment(fault)) {
    if (isSegment(entry->path().filename().string(), path.stem().string())) old.push_back(entry->path());
  }
  for (const fs::path& segment : old) fs::remove(segment, fault);
  fs::remove(path, fault);
}

}  // namespace zel

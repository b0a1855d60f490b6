#include "gateway/http/token.h"

#include <fmt/format.h>
#include <sys/random.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fstream>

#include "gateway/json/hex.h"

namespace zel::gateway {
namespace {

bool isTokenCharacter(char letter) {
  const auto isIn = [letter](char first, char last) { return letter >= first && letter <= last; };
  return isIn('a', 'z') || isIn('A', 'Z') || isIn('0', '9') ||
         std::string_view("-._~").find(letter) != std::string_view::npos;
}

}  // namespace

std::optional<std::string> makeToken() {
  std::array<std::uint8_t, 16> bytes{};
  if (::getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) return std::nullopt;
  return hexOf(bytes);
}

std::optional<std::string> readToken(const std::string& path, std::string& error) {
  errno = 0;
  std::ifstream file(path);
  std::string token;
  if (!std::getline(file, token)) {
    error = fmt::format("no token can be read from {}: {}", path, errno != 0 ? std::strerror(errno) : "it is empty");
    return std::nullopt;
  }
  while (!token.empty() && (token.back() == ' ' || token.back() == '\r' || token.back() == '\t')) token.pop_back();
  if (token.size() >= kShortestToken && std::ranges::all_of(token, isTokenCharacter)) return token;
  error = fmt::format("{} holds no token: {} or more letters, digits, \"-\", \".\", \"_\" and \"~\" on its first line",
                      path, kShortestToken);
  return std::nullopt;
}

}  // namespace zel::gateway

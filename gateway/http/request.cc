#include "gateway/http/request.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <utility>

#include "base/text.h"

namespace zel::gateway {
namespace {

std::optional<std::string> percentDecoded(std::string_view text, bool plusIsSpace) {
  std::string decoded;
  for (; !text.empty(); text.remove_prefix(1)) {
    char letter = text.front();
    if (letter == '%') {
      std::uint8_t byte = 0;
      if (text.size() < 3) return std::nullopt;
      const auto [end, fault] = std::from_chars(text.data() + 1, text.data() + 3, byte, 16);
      if (fault != std::errc() || end != text.data() + 3) return std::nullopt;
      letter = static_cast<char>(byte);
      text.remove_prefix(2);
    } else if (letter == '+' && plusIsSpace) {
      letter = ' ';
    }
    if (static_cast<unsigned char>(letter) < 0x20 || letter == 0x7F) return std::nullopt;
    decoded += letter;
  }
  if (!isUtf8(decoded)) return std::nullopt;
  return decoded;
}

// The text up to the separator, which is removed with it.
std::string_view takeUpTo(std::string_view& text, char separator) {
  const std::size_t end = std::min(text.find(separator), text.size());
  const std::string_view part = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return part;
}

bool addQuery(Target& target, std::string_view query) {
  while (!query.empty()) {
    std::string_view pair = takeUpTo(query, '&');
    if (pair.empty()) continue;
    const auto name = percentDecoded(takeUpTo(pair, '='), true);
    const auto value = percentDecoded(pair, true);
    if (!name || !value) return false;
    target.query.emplace(*name, *value);
  }
  return true;
}

std::string_view withoutSpace(std::string_view text) {
  const auto isSpace = [](char letter) { return letter == ' ' || letter == '\t'; };
  while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
  return text;
}

}  // namespace

std::optional<Target> parseTarget(std::string_view text) {
  if (text.empty() || text.front() != '/' || text.size() > kMostTarget) return std::nullopt;
  const auto isVisible = [](char letter) { return letter > 0x20 && letter < 0x7F && letter != '#'; };
  if (!std::ranges::all_of(text, isVisible)) return std::nullopt;
  Target target;
  std::string_view path = takeUpTo(text, '?');
  path.remove_prefix(1);
  for (bool more = !path.empty(); more;) {
    more = path.find('/') != std::string_view::npos;
    auto segment = percentDecoded(takeUpTo(path, '/'), false);
    if (!segment) return std::nullopt;
    target.path.push_back(*std::move(segment));
  }
  if (!addQuery(target, text)) return std::nullopt;
  return target;
}

std::string_view Request::header(std::string_view name) const {
  const auto found = headers.find(name);
  return found == headers.end() ? std::string_view() : found->second;
}

std::optional<std::string_view> cookieIn(std::string_view header, std::string_view name) {
  while (!header.empty()) {
    std::string_view pair = withoutSpace(takeUpTo(header, ';'));
    if (takeUpTo(pair, '=') == name) return pair;
  }
  return std::nullopt;
}

std::string mediaTypeIn(std::string_view contentType) {
  std::string type(withoutSpace(takeUpTo(contentType, ';')));
  std::ranges::transform(type, type.begin(), [](char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
  });
  return type;
}

}  // namespace zel::gateway

#include "platform/linux/percent_encoding.h"

#include <string_view>

namespace zel::platform {
namespace {

bool isPlain(char letter) {
  return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') || (letter >= '0' && letter <= '9') ||
         std::string_view("-_.~").find(letter) != std::string_view::npos;
}

}  // namespace

std::string percentEncoded(const std::string& text) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string encoded;
  for (const char letter : text) {
    if (isPlain(letter)) {
      encoded += letter;
    } else {
      const auto byte = static_cast<unsigned char>(letter);
      encoded += {'%', kDigits[byte >> 4], kDigits[byte & 0xF]};
    }
  }
  return encoded;
}

}  // namespace zel::platform

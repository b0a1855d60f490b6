#include "bindings/c/text.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <span>

#include "bindings/c/failure.h"

namespace zel::c {
namespace {

void* memoryOf(const void* from, std::size_t length, std::size_t size) {
  void* const memory = std::calloc(size, 1);
  if (memory == nullptr) throw std::bad_alloc();
  if (length > 0) std::memcpy(memory, from, length);
  return memory;
}

bool isWithin(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

}  // namespace

std::string textIn(const char* text, std::string_view name) {
  if (text == nullptr) refuse(std::string(name) + " is NULL");
  return text;
}

std::string someTextIn(const char* text) { return text == nullptr ? std::string() : std::string(text); }

ZELData bytesIn(const std::uint8_t* bytes, std::size_t length, std::string_view name) {
  if (bytes == nullptr && length > 0) refuse(std::string(name) + " is NULL, and has a length");
  return ZELData(std::span<const std::uint8_t>(bytes, length));
}

std::optional<ZELData> someBytesIn(const std::uint8_t* bytes, std::size_t length, std::string_view name) {
  if (bytes == nullptr && length == 0) return std::nullopt;
  return bytesIn(bytes, length, name);
}

char* textOut(const std::optional<std::string>& text) {
  if (!text) return nullptr;
  return static_cast<char*>(memoryOf(text->data(), text->size(), text->size() + 1));
}

std::uint8_t* bytesOut(const std::optional<ZELData>& bytes) {
  if (!bytes) return nullptr;
  // Of no bytes too, so that they differ from those that are absent.
  return static_cast<std::uint8_t*>(memoryOf(bytes->bytes().data(), bytes->size(), bytes->size() + 1));
}

void copyText(std::string_view text, char* to, std::size_t size) noexcept {
  std::size_t length = std::min(text.size(), size - 1);
  if (length < text.size()) {
    while (length > 0 && isWithin(text[length])) --length;
  }
  std::copy_n(text.data(), length, to);
  to[length] = 0;
}

}  // namespace zel::c

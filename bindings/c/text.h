#pragma once

#include <ZELTarkaSDK/ZELData.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Texts and bytes in and out.

namespace zel::c {

// What is given in. name: of the parameter.
//
// Errors: refused where it is NULL.
std::string textIn(const char* text, std::string_view name);
// NULL is an empty one.
std::string someTextIn(const char* text);
ZELData bytesIn(const std::uint8_t* bytes, std::size_t length, std::string_view name);
// NULL without a length is none.
std::optional<ZELData> someBytesIn(const std::uint8_t* bytes, std::size_t length, std::string_view name);

// Memory for zel_free(); NULL for what is absent.
//
// Errors: std::bad_alloc.
char* textOut(const std::optional<std::string>& text);
std::uint8_t* bytesOut(const std::optional<ZELData>& bytes);

// Cuts a text at a whole character of UTF-8, and ends it with 0.
void copyText(std::string_view text, char* to, std::size_t size) noexcept;
template <std::size_t size>
void copyText(std::string_view text, char (&to)[size]) noexcept {
  copyText(text, to, size);
}

}  // namespace zel::c

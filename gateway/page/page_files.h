#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace zel::gateway {

// A file of the page, as it stands in the program.
struct PageFile {
  std::string_view path;  // "/style.css"; the page itself is "/"
  std::string_view type;
  std::string_view etag;  // of its content, in quotation marks
  std::span<const std::uint8_t> content;
};

// All that the page loads.
std::span<const PageFile> pageFiles();

// The Content-Security-Policy that the page's answers need: nothing from elsewhere, no script or style within the
// document. "blob:" are the live picture's own media, and the pictures that the page makes.
inline constexpr std::string_view kPageSecurityPolicy =
    "default-src 'self'; media-src 'self' blob:; img-src 'self' blob:; object-src 'none'; base-uri 'none'; "
    "form-action 'none'; frame-ancestors 'none'";

}  // namespace zel::gateway

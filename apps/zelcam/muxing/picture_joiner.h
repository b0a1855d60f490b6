#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace zel::app {

// All slices of one picture, each behind its start code of 4 bytes.
// Units:  milliseconds.
struct JoinedPicture {
  std::vector<std::uint8_t> bytes;
  bool key = false;
  std::int64_t time = 0;
};

// Whether a slice, behind four bytes of start code or length, is the first of its picture.
bool beginsPicture(std::span<const std::uint8_t> unit);

// Puts a camera's slices together again to pictures. A picture is whole when the next one begins.
class PictureJoiner {
 public:
  // unit: one slice behind its start code. Returns the picture before, once this one begins the next. What is no slice
  // is left out, and so is what comes before the first picture's beginning, or would make a picture too large.
  std::optional<JoinedPicture> add(std::span<const std::uint8_t> unit, bool key, std::int64_t time);

  // The picture that is still being put together.
  std::optional<JoinedPicture> flush();

 private:
  std::optional<JoinedPicture> picture_;
};

}  // namespace zel::app

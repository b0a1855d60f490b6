#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace zel {

// All slices of one picture (access unit), each with its 4-byte start code.
// Units:  milliseconds.
struct JoinedPicture {
  std::vector<std::uint8_t> bytes;
  bool key = false;
  std::int64_t time = 0;
};

// Whether a slice, after four bytes of start code or length, is the first of its picture.
bool beginsPicture(std::span<const std::uint8_t> unit);

// Joins a camera's slices to pictures. A picture is complete when the next one begins.
class PictureJoiner {
 public:
  // unit: one slice with its start code. Returns the previous picture when this slice begins the next. Drops units that
  // are no slices, slices before the first picture's beginning, and slices that would make a picture too large.
  std::optional<JoinedPicture> add(std::span<const std::uint8_t> unit, bool key, std::int64_t time);

  // The incomplete picture.
  std::optional<JoinedPicture> flush() { return std::exchange(picture_, std::nullopt); }

 private:
  std::optional<JoinedPicture> picture_;
};

}  // namespace zel

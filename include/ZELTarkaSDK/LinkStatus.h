#pragma once

#include <cstdint>
#include <string_view>

namespace zel {

// The states of the link to the camera. ZELCameraAccessory::status() and its observers tell the same numbers.
enum class LinkStatus : std::uint64_t {
  closed = 0,   // no connection
  open = 1,     // a session is open, and no frame has come yet
  flowing = 2,  // frames arrive: the camera can be asked
  silent = 3,   // frames have stopped; the next one makes it flowing again
};

// The state in words for people; "unknown" for any other number.
constexpr std::string_view toString(LinkStatus status) {
  switch (status) {
    case LinkStatus::closed:
      return "no connection";
    case LinkStatus::open:
      return "session open";
    case LinkStatus::flowing:
      return "frames arriving";
    case LinkStatus::silent:
      return "frames stopped";
  }
  return "unknown";
}

}  // namespace zel

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "base/wire.h"
#include "protocol/frame.h"

namespace zel::gateway {

// One whole frame of a host, as it stands on the wire.
struct HostFrame {
  FrameType type = FrameType::other;
  Bytes bytes;

  ByteView payload() const { return ByteView(bytes).subspan(kFrameHeader); }
};

// Cuts a host's bytes into messages and files, whatever the reads. Frames of other types are passed over. Memory is
// taken for bytes that have come, not for a length that is claimed.
class HostFrames {
 public:
  // The longest message; a longer one is a fault, and so is a file longer than kMaxFrameLength.
  static constexpr std::uint32_t kLongestMessage = 1024 * 1024;

  // Takes bytes from the front of `bytes`, at most those of the next frame, and returns that frame once it is whole.
  // Takes nothing after a fault, and none of a file that is not admitted.
  std::optional<HostFrame> take(ByteView& bytes);

  // Whether a frame claimed an impossible length: what follows cannot be cut.
  bool isFaulty() const { return state_ == State::faulty; }

  // Whether a file has begun that waits to be admitted.
  bool awaitsAdmission() const { return state_ == State::fileWaits; }
  // Nothing where none waits.
  void admitFile();
  // Whether a file is on its way that was admitted.
  bool isInFile() const { return state_ == State::payload && type_ == FrameType::file; }

 private:
  enum class State {
    header,     // of the next frame
    payload,    // is kept
    passing,    // over the payload of a frame that nobody wants
    fileWaits,  // to be admitted
    faulty,
  };

  void beginPayload();
  std::size_t missing() const;

  State state_ = State::header;
  FrameType type_ = FrameType::other;
  std::size_t length_ = 0;  // of the frame
  std::size_t passed_ = 0;  // of a frame that is passed over, its header included
  Bytes frame_;
};

}  // namespace zel::gateway

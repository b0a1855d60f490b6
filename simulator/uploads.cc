#include "simulator/uploads.h"

#include <utility>

namespace zel::simulator {
namespace {

constexpr std::size_t kPathAt = 2 + 2, kPathSize = 64;  // file type, reserved; path
constexpr std::size_t kFileAt = kPathAt + kPathSize;
constexpr std::size_t kMostWaiting = 2 * kLargestFile;
constexpr std::size_t kPerFile = 4096;  // upper bound of a queued file's memory besides its bytes
constexpr std::uint16_t kWritten = 0, kFailed = 1;
constexpr std::uint16_t kUploaded = 2, kOtherKinds[] = {0, 1, 3, 0x0102, 0xFFFF};
constexpr char kNobodysPath[] = "nobody/sent/this";

// | 0 | u16      | not used     |
// | 2 | u16      | kind         |
// | 4 | u16      | status       |
// | 6 | u8 x 64  | path as sent |
Bytes fileReply(std::uint16_t kind, const Bytes& path, std::uint16_t status) {
  Bytes payload = packed(std::uint16_t{0}, kind, status);
  add(payload, path);
  return frame(kFile, payload);
}

}  // namespace

void Uploads::take(const std::shared_ptr<HostLink>& host, HostFile file) {
  if (file.payload.size() < kFileAt) return;
  const std::span<const std::uint8_t> payload = file.payload;
  const Bytes path = copyOf(payload.subspan(kPathAt, kPathSize));
  const std::size_t size = payload.size() - kFileAt;
  const std::size_t held = size + kPerFile;
  const bool tooMuch = waiting_ + held > kMostWaiting || !state_.card.takes(size);
  if (faults_.uploadFail || tooMuch) return answer(*host, path, kFailed);
  waiting_ += held;
  state_.card.take(size);
  world_.onWorker([this, host, path, size, held, file = std::make_shared<HostFile>(std::move(file))] {
    const bool written = storage_.write(textIn(path), std::span(file->payload).subspan(kFileAt));
    return [this, host, path, size, held, written] {
      waiting_ -= held;
      if (!written) state_.card.give(size);
      answer(*host, path, written ? kWritten : kFailed);
    };
  });
}

void Uploads::answer(HostLink& host, const Bytes& path, std::uint16_t status) const {
  if (faults_.fileKinds) {
    for (const std::uint16_t kind : kOtherKinds) host.send(fileReply(kind, path, kFailed));
  }
  host.send(fileReply(kUploaded, faults_.unmatchedPaths ? textField(kNobodysPath, kPathSize) : path, status));
}

}  // namespace zel::simulator

#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <string>

#include "gateway/cameras/notices.h"
#include "gateway/http/response.h"

namespace zel::gateway {

// A camera's notices as text/event-stream for one reader. Who reads too slowly loses the oldest; memory is bounded.
//
// Thread: the server's; notices come on any thread.
class EventStream final : public ByteSource {
 public:
  static constexpr std::size_t kMost = 256;                        // notices that wait
  static constexpr std::size_t kMostBytes = std::size_t{1} << 20;  // of these

  // ready: see StreamContent.
  explicit EventStream(std::function<void()> ready) : ready_(std::move(ready)) {}

  void put(const Notice& notice);

  std::size_t read(std::span<std::uint8_t> to) override;
  bool isEnded() const override { return false; }

  // How many were lost because nobody read them.
  std::uint64_t dropped() const;

 private:
  const std::function<void()> ready_;
  mutable std::mutex mutex_;
  std::deque<std::string> waiting_;
  std::size_t bytes_ = 0, at_ = 0;  // at_: bytes of the first one that were read
  std::uint64_t dropped_ = 0;
};

}  // namespace zel::gateway

#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <vector>

#include "base/wire.h"

namespace zel::fuzz {

// A fuzzer's bytes, taken from the front. Whatever is missing is 0 or empty.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : rest_(data, size) {}

  bool empty() const { return rest_.empty(); }
  std::uint8_t byte() {
    const ByteView one = take(1);
    return one.empty() ? std::uint8_t{0} : one[0];
  }
  ByteView take(std::size_t count) {
    const ByteView taken = rest_.first(std::min(count, rest_.size()));
    rest_ = rest_.subspan(taken.size());
    return taken;
  }
  // As many bytes as the next byte says, and `more`.
  ByteView block(std::size_t more = 0) { return take(byte() + more); }

 private:
  ByteView rest_;
};

// What the fuzzed code must never do.
inline void require(bool condition) {
  if (!condition) std::abort();
}

// Counts the calls of handlers; a second call of one ends the fuzzer.
class Calls {
 public:
  // What a handler calls when it is called itself; `number` is what to ask for it by.
  std::function<void()> expect(std::size_t& number) {
    number = calls_.size();
    calls_.push_back(std::make_shared<int>(0));
    return [calls = calls_.back()] { require(++*calls == 1); };
  }
  bool called(std::size_t number) const { return *calls_[number] == 1; }

 private:
  std::vector<std::shared_ptr<int>> calls_;
};

}  // namespace zel::fuzz

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>

#include "media/h264_nalu_parser.h"
#include "tests/media/nal_bytes.h"

namespace zel::test {
namespace {

// The cutter's rule, step by step and byte by byte.
class SlowCutter {
 public:
  std::vector<Bytes> append(const Bytes& chunk) {
    const int size = static_cast<int>(chunk.size());
    if (size >= 4 && startsAt(chunk, 0)) {
      units_ = {pending_};
      pending_ = slice(chunk, scan(chunk, 4, size >= 9 ? size - 4 : 0, 0), size);
      return units_;
    }
    const int lookBack = std::min(static_cast<int>(pending_.size()), 3) + size;
    pending_ = join(pending_, chunk);
    units_.clear();
    const int held = static_cast<int>(pending_.size());
    const int last = scan(pending_, std::max(held - lookBack, 4), held - 4, lookBack);
    if (!units_.empty()) pending_ = slice(pending_, last, held);
    return units_;
  }
  const Bytes& pending() const { return pending_; }

 private:
  static bool startsAt(const Bytes& data, int at) {
    const auto from = data.begin() + at;
    return from[0] == 0 && from[1] == 0 && from[2] == 0 && from[3] == 1;
  }
  static Bytes slice(const Bytes& data, int begin, int end) {
    return end - begin < 1 ? Bytes() : Bytes(data.begin() + begin, data.begin() + end);
  }
  int scan(const Bytes& data, int from, int end, int last) {
    for (int i = from; i < end; ++i) {
      if (!startsAt(data, i)) continue;
      units_.push_back(slice(data, last, i));
      last = i;
    }
    return last;
  }

  std::vector<Bytes> units_;
  Bytes pending_;
};

RC_GTEST_PROP(H264NaluParserPropertyTest, CutsAnyChunkingAsTheRuleSays, ()) {
  const auto token = rc::gen::element<Bytes>(bytes({0, 0, 0, 1}), bytes({0, 0, 0, 1, 0x65}), bytes({0, 0, 1}),
                                             bytes({0}), bytes({1}), bytes({7}), repeated(9, 7), repeated(300, 9));
  const auto chunks =
      *rc::gen::container<std::vector<std::vector<Bytes>>>(rc::gen::container<std::vector<Bytes>>(token));
  orq::H264NaluParser parser;
  SlowCutter slow;
  for (const auto& tokens : chunks) {
    Bytes chunk;
    for (const Bytes& each : tokens) chunk = join(chunk, each);
    std::vector<Bytes> units;
    for (const auto& each : parser.AppendData(chunk.data(), static_cast<int>(chunk.size())))
      units.push_back(bytesOf(*each));
    RC_ASSERT(units == slow.append(chunk));
    RC_ASSERT(parser.pendingSize() == static_cast<int>(slow.pending().size()));
  }
}

// A camera sends whole access units a frame: then every unit comes out whole, once and in order.
RC_GTEST_PROP(H264NaluParserPropertyTest, LosesNothingOfChunksThatBeginWithStartCodes, ()) {
  const auto counts = *rc::gen::container<std::vector<int>>(rc::gen::inRange(5, 400));
  orq::H264NaluParser parser;
  std::vector<Bytes> sent{Bytes()}, received;
  for (const int count : counts) {
    const Bytes chunk = join(unit({0x67, 1, 2, 3, 4}), unit({0x65}), repeated(static_cast<std::size_t>(count), 7));
    sent.push_back(unit({0x67, 1, 2, 3, 4}));
    sent.push_back(join(unit({0x65}), repeated(static_cast<std::size_t>(count), 7)));
    for (const auto& each : parser.AppendData(chunk.data(), static_cast<int>(chunk.size())))
      received.push_back(bytesOf(*each));
  }
  if (!counts.empty()) sent.pop_back();  // held back
  if (counts.empty()) sent.clear();
  RC_ASSERT(received == sent);
}

}  // namespace
}  // namespace zel::test

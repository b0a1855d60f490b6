// Three hosts ask in any order, their bytes cut anywhere, and the camera answers when it likes: each host gets exactly
// the replies to its own requests, in their order.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <deque>
#include <map>

#include "tests/gateway/line/line_test.h"

namespace zel::test {
namespace {

constexpr int kHosts = 3;

// The camera echoes the body, which names host and number. Captures send their photo, too.
class Exchange : public LineTest {
 public:
  Exchange() {
    for (int i = 0; i < kHosts; ++i) ids_.push_back(syncedHost());
  }
  void TestBody() override {}

  void ask(int who, int kind) {
    static constexpr std::array kCodes = {0x4001, 0x4025, 0x0007, 0x4016};
    const int code = kCodes[static_cast<std::size_t>(kind)];
    Bytes body = repeated(64, who);
    body[1] = static_cast<std::uint8_t>(++numbers_[who]);
    expected_[who].push_back(message(code | 0x8000, body));
    if (code == 0x0007) photos_[who].push_back(frameOf(3, repeated(65, who)));
    unsent_[who] = join(unsent_[who], message(code, body));
  }
  void send(int who, std::size_t count) {
    Bytes& left = unsent_[who];
    const auto end = left.begin() + static_cast<std::ptrdiff_t>(std::min(count, left.size()));
    asks(ids_[static_cast<std::size_t>(who)], Bytes(left.begin(), end));
    left.erase(left.begin(), end);
  }
  void answerOne() {
    for (Bytes& request : asked()) underWay_.push_back(std::move(request));
    if (underWay_.empty()) return;
    Bytes reply = underWay_.front();
    underWay_.pop_front();
    reply[7] |= 0x80;
    camera(reply);
    if (reply[6] == 0x07) camera(frameOf(3, repeated(65, reply[8])));
  }
  void wait(int time) { pass(milliseconds(time)); }

  void finish() {
    for (int who = 0; who < kHosts; ++who) send(who, SIZE_MAX);
    for (int i = 0; i < 1000; ++i) {
      answerOne();
      pass(milliseconds(5));
    }
  }
  void check() {
    for (int who = 0; who < kHosts; ++who) {
      std::map<int, std::vector<Bytes>> got, wanted;  // by code: kinds do not wait for each other
      std::vector<Bytes> photos;
      for (const Bytes& one : told(ids_[static_cast<std::size_t>(who)])) {
        if (one[4] == 3) photos.push_back(one);
        if (one[4] == 4) got[one[6] + 256 * one[7]].push_back(one);
      }
      for (const Bytes& one : expected_[who]) wanted[one[6] + 256 * one[7]].push_back(one);
      RC_ASSERT(got == wanted);
      RC_ASSERT(photos == photos_[who]);
    }
  }

 private:
  std::vector<HostId> ids_;
  std::map<int, int> numbers_;
  std::map<int, Bytes> unsent_;
  std::map<int, std::vector<Bytes>> expected_, photos_;
  std::deque<Bytes> underWay_;
};

RC_GTEST_PROP(CameraLineProperty, NoReplyIsLostOrDoubled, ()) {
  Exchange exchange;
  const auto steps = *rc::gen::container<std::vector<std::array<int, 3>>>(
      rc::gen::container<std::array<int, 3>>(rc::gen::inRange(0, 12)));
  for (const auto& [what, who, how] : steps) {
    if (what < 5) exchange.ask(who % kHosts, how % 4);
    if (what >= 5 && what < 9) exchange.send(who % kHosts, static_cast<std::size_t>(7 * how));
    if (what >= 9 && what < 11) exchange.answerOne();
    if (what == 11) exchange.wait(how);
  }
  exchange.finish();
  exchange.check();
}

}  // namespace
}  // namespace zel::test

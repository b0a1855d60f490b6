// The camera's answers and events on hostile bytes. Each step is one byte and what it needs: a message of the camera, a
// request that waits for one, a lost link. A handler is called at most once, and the last of each kind, once the link
// is lost in the end, exactly once.

#include <array>
#include <iterator>
#include <map>

#include <ZELTarkaSDK/ZELCameraUCD.h>

#include "fuzz/fuzz_input.h"
#include "protocol/camera_events.h"
#include "protocol/catalogue.h"
#include "tests/link/connected_camera.h"

namespace {

using zel::fuzz::Calls;
using zel::fuzz::Input;
using zel::fuzz::require;
using zel::test::ConnectedCamera;

constexpr std::uint8_t kReplug = 255;
constexpr int kReplugs = 2;  // of one input, since each takes as long as a thousand other steps

class Session {
 public:
  void step(Input& input) {
    const std::uint8_t choice = input.byte();
    if (choice == kReplug && replugs_++ < kReplugs) return replug();
    switch (choice % 7) {
      case 0:
        return answer(input);
      case 1:
        return announce(input);
      case 2:
        return ask(input);
      case 3:
        return askTyped(input);
      case 4:
        return camera_.host.runUntilIdle();
      case 5:
        return camera_.deliver(static_cast<std::uint16_t>(input.byte() | input.byte() << 8), input.block());
      default:
        return ucd().responseAllReblackBlockWithErrorCode(100);
    }
  }

  void end() {
    ucd().responseAllReblackBlockWithErrorCode(100);
    camera_.host.runUntilIdle();
    for (const auto& [type, number] : last_) require(calls_.called(number));
  }

 private:
  void replug() {
    camera_.unplug();
    camera_.plug();
  }

  ZELCameraUCD& ucd() { return camera_.stack->ucd(); }

  const zel::Family& family(Input& input) { return zel::kFamilies[input.byte() % std::size(zel::kFamilies)]; }

  void answer(Input& input) {
    const auto code = replyTo(family(input).request);
    camera_.deliver(static_cast<std::uint16_t>(code), input.block());
  }

  void announce(Input& input) {
    const auto& event = zel::kEvents[input.byte() % std::size(zel::kEvents)];
    camera_.deliver(static_cast<std::uint16_t>(event.code), input.block());
  }

  std::function<void()> handler(std::int64_t type) { return calls_.expect(last_[type]); }

  void ask(Input& input) {
    const auto type = static_cast<std::int64_t>(family(input).type);
    ucd().sendMsg(type, {}, [called = handler(type)](const auto&) { called(); });
  }

  // Handlers that take a reply apart.
  void askTyped(Input& input) {
    switch (input.byte() % 6) {
      case 0:
        return ucd().msgCmdShutterWithGps(
            {}, {}, {}, [called = handler(7)](const auto&, auto, auto, const auto&) { called(); }, nullptr);
      case 1:
        return ucd().msgCmdShutterAEBWithGps(
            {}, {}, {}, {}, {},
            [called = handler(16)](const auto&, const auto&, const auto&, const auto&) { called(); }, nullptr);
      case 2:
        return ucd().msgReqGetMediaOffset(0, 0, [called = handler(32)](const auto&, const auto&) { called(); });
      case 3:
        return ucd().msgReqGetFileMnd("a", [called = handler(57)](const auto&, const auto&) { called(); });
      case 4:
        return ucd().msgReqCreateTxtFile("a", 0, {}, [called = handler(62)](const auto&, auto) { called(); });
      default:
        return ucd().msgCmdStartVideoWithVideoRes(3, [called = handler(4)](const auto&, auto) { called(); });
    }
  }

  // One for all inputs, since making it takes longer than most of them: nothing waits on it in between.
  static ConnectedCamera& connectedCamera() {
    static ConnectedCamera once;
    return once;
  }

  ConnectedCamera& camera_ = connectedCamera();
  int replugs_ = 0;
  Calls calls_;
  std::map<std::int64_t, std::size_t> last_;  // by message type
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  Session session;
  while (!input.empty()) session.step(input);
  session.end();
  return 0;
}

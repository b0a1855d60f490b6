// What a line takes of hostile hosts and a hostile camera: each step's first byte chooses who sends, the bytes behind
// it are sent. Everything that a host is sent stays whole frames, and what waits stays bounded.

#include <array>
#include <map>

#include "fuzz/fuzz_input.h"
#include "gateway/line/camera_line.h"
#include "gateway/line/host_frames.h"

namespace {

using zel::gateway::CameraLine;
using zel::gateway::HostFrames;
using zel::gateway::HostId;
using zel::gateway::LineTime;

struct World {
  CameraLine line;
  std::map<HostId, HostFrames> hosts;
  LineTime now{std::chrono::hours(1)};

  void hostSends(HostId host, zel::ByteView bytes) {
    HostFrames& frames = hosts.at(host);
    for (;;) {
      if (!line.mayRead(host)) return;
      if (frames.awaitsAdmission() && !line.mayBeginFile(host, now)) return;
      frames.admitFile();
      auto frame = frames.take(bytes);
      if (frames.isFaulty()) return leave(host);
      if (frame) line.take(host, *std::move(frame), now);
      if (!frame && !frames.awaitsAdmission()) return;
    }
  }
  void leave(HostId host) {
    line.leave(host, now);
    hosts.erase(host);
  }
  void drain() {
    for (zel::ByteView bytes = line.toCamera(); !bytes.empty(); bytes = line.toCamera()) {
      line.wroteToCamera(bytes.size(), now);
    }
    std::array<zel::ByteView, 8> pieces;
    for (auto& [host, frames] : hosts) {
      auto& queue = line.queueOf(host);
      while (const std::size_t count = queue.front(pieces)) {
        std::size_t size = 0;
        for (std::size_t i = 0; i < count; ++i) size += pieces[i].size();
        queue.written(size);
      }
      zel::fuzz::require(queue.empty());
    }
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  zel::fuzz::Input input(data, size);
  World world;
  for (int i = 0; i < 3; ++i) world.hosts[world.line.admit(world.now)];
  while (!input.empty()) {
    const int who = input.byte() % 8;
    const zel::ByteView bytes = input.take(input.byte());
    world.now += std::chrono::milliseconds(who == 7 ? 997 : 3);
    if (who < 3 && world.hosts.contains(static_cast<HostId>(who + 1)))
      world.hostSends(static_cast<HostId>(who + 1), bytes);
    if (who >= 3 && who < 5 && !bytes.empty()) world.line.takeFrame(bytes[0] % 12, bytes.subspan(1), world.now);
    if (who == 5) world.drain();
    if (who == 6 && !world.hosts.empty()) world.leave(world.hosts.begin()->first);
    world.line.tick(world.now);
    zel::fuzz::require(!world.line.due() || *world.line.due() > world.now - std::chrono::seconds(1));
  }
  world.drain();
  return 0;
}

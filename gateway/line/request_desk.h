#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <vector>

#include "base/wire.h"

namespace zel::gateway {

using HostId = std::uint64_t;
// The line's own requests, and those of hosts that have gone.
inline constexpr HostId kNobody = 0;

using LineTime = std::chrono::steady_clock::time_point;

// Who waits for which answer. The camera's replies do not say whose they are: so one host at a time has requests of a
// kind under way, and the others of that kind wait behind them. All captures are one kind, as their photos do not say
// whose they are either.
//
// A reply that nobody waits for completes nothing. A camera that answers twice would complete the next host's request
// with the second answer: so the kind rests for a moment before another host has its turn, and for longer once the
// camera has done so.
//
// Thread: one.
class RequestDesk {
 public:
  // How long an answer is waited for: longer than hosts do by themselves, 5 s and 10 s, and of captures 60 s without
  // progress. For a host that has gone, a capture is waited for as long as other answers.
  static constexpr std::chrono::seconds kReplyLimit{15}, kCaptureLimit{75};
  // The rest between two hosts.
  static constexpr std::chrono::milliseconds kRest{5}, kLongRest{50};
  // How many requests of one host are waiting or under way at most, and of all hosts.
  static constexpr std::size_t kMostOfHost = 64, kMostOfAll = 4096;

  struct Request {
    HostId host = kNobody;
    std::uint16_t code = 0;
    Bytes frame;  // whole
  };

  // What the owner does with a request whose turn has come.
  enum class Verdict {
    sent,      // the camera has it
    answered,  // it needs no answer of the camera
  };
  class Owner {
   public:
    virtual Verdict dispatch(const Request& request) = 0;

   protected:
    ~Owner() = default;
  };

  explicit RequestDesk(Owner& owner) : owner_(owner) {}
  RequestDesk(const RequestDesk&) = delete;
  RequestDesk& operator=(const RequestDesk&) = delete;

  // Adds a request to its line, and dispatches it if its turn has come.
  void add(Request request, LineTime now);
  // Whether the host may add another one.
  bool takesFrom(HostId host) const;
  // Its waiting requests go; the answers to those under way are nobody's.
  void left(HostId host, LineTime now);

  // Whose a reply is; nothing where nobody waits for it.
  std::optional<HostId> whose(std::uint16_t replyCode) const;
  // It has come: the next request may have its turn.
  void noteReply(std::uint16_t replyCode, ByteView body, LineTime now);
  // Whose photo that is.
  std::optional<HostId> photo(LineTime now);
  // Whether one is expected.
  bool awaitsPhoto() const;

  // Ends what has waited too long, and dispatches what has rested.
  void tick(LineTime now);
  // When tick() has something to do.
  std::optional<LineTime> due() const;

 private:
  using Lane = std::uint32_t;

  struct Line {
    std::deque<Request> waiting;
    // Under way, all of one host.
    HostId host = kNobody;
    std::deque<std::uint16_t> codes;
    LineTime deadline;
    int photosLeft = 0;  // of a capture
    bool replied = false;
    // Before.
    HostId served = kNobody;
    LineTime restsUntil;
  };

  static Lane laneOf(std::uint16_t replyCode);
  void advance(Line& line, LineTime now);
  bool mayGo(const Line& line, LineTime now) const;
  void begin(Line& line, const Request& request, LineTime now);
  void finish(Line& line, LineTime now);
  void endCaptureIfDone(Line& line, LineTime now);
  void setDeadline(Line& line, LineTime now) const;
  void forget(HostId host);

  Owner& owner_;
  std::map<Lane, Line> lines_;
  std::map<HostId, std::size_t> ofHost_;
  std::size_t ofAll_ = 0;
  std::chrono::milliseconds rest_ = kRest;
};

}  // namespace zel::gateway

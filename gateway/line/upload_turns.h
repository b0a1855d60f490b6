#pragma once

#include <chrono>
#include <deque>
#include <optional>

#include "gateway/line/request_desk.h"

namespace zel::gateway {

// Whose file goes to the camera: one host's at a time, from its first byte to the camera's answer, since the answers
// need not name the file. The others wait with the bytes in their sockets.
//
// Thread: one.
class UploadTurns {
 public:
  // How long a file may stand still, on its way from the host, on its way to the camera, or before the answer. Hosts
  // wait for 60 s by themselves.
  static constexpr std::chrono::seconds kLimit{75};
  // The same where its host has gone.
  static constexpr std::chrono::seconds kLimitOfNobody{15};

  // Puts the host in the line if it is not there. True when it has the turn.
  bool mayBegin(HostId host, LineTime now);
  // Bytes of the file have moved.
  void moved(LineTime now);
  // The whole file of the host is on its way to the camera. False when it has not the turn.
  bool sent(HostId host, LineTime now);
  // Whose an answer is; nothing where no file was sent.
  std::optional<HostId> whose() const;
  // The answer has come.
  void finish(LineTime now);
  void left(HostId host, LineTime now);

  // The host whose file has stood still in its own socket: it must go. Ends the wait for an answer that does not come.
  std::optional<HostId> tick(LineTime now);
  std::optional<LineTime> due() const;

 private:
  void next(LineTime now);

  std::deque<HostId> line_;  // the first has the turn
  bool isSent_ = false;
  LineTime deadline_;
};

}  // namespace zel::gateway

#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include <ZELTarkaSDK/LinkStatus.h>
#include <ZELTarkaSDK/ZELCameraAccessory.h>
#include <ZELTarkaSDK/ZELCameraNotificationProtocol.h>
#include <ZELTarkaSDK/ZELHandlers.h>
#include <ZELTarkaSDK/ZELMessageFields.h>
#include <ZELTarkaSDK/platform/call_gate.h>
#include <ZELTarkaSDK/platform/queues.h>

#include "base/has_memory_for.h"
#include "base/mutex.h"
#include "base/pending_table.h"
#include "base/shared_value.h"
#include "capture/zel_ucd_file.h"
#include "link/camera_data_parser.h"
#include "link/keep_alive.h"
#include "link/roles.h"
#include "protocol/camera_events.h"
#include "protocol/catalogue.h"

namespace zel {

// Sends requests, matches replies to handlers, fails handlers, and delivers events to their receivers.
// Owner:  the arguments of the constructor must outlive the object, and no frame may arrive after its destruction.
// Thread: any thread; handlers run on the main queue, each at most once.
class RequestEngine final : public SyncDataRequester {
 public:
  RequestEngine(ZELCameraAccessory& accessory, CameraDataParser& parser, ZELUCDFile& ucdFile,
                platform::Queue& mainQueue);
  ~RequestEngine();
  RequestEngine(const RequestEngine&) = delete;
  RequestEngine& operator=(const RequestEngine&) = delete;

  // Sends a request when the link is up, and fails it with 100 otherwise. A later request of the same type replaces a
  // pending one, whose handler is then never called.
  // Errors: std::bad_alloc; the request was not sent then, and the handler is not kept.
  void send(std::int64_t msgType, const ZELMessageFields& fields, RebackDic rebackBlock);

  // The marker request. It does not depend on the status, because the camera sends no frame before it.
  void msgReqSendSyncData(const ZELData& data, RebackDic rebackBlock) override;

  // Completes the type's pending handler.
  void respond(std::int64_t msgType, const std::optional<ZELMessageFields>& reply);
  void respondWithError(std::int64_t msgType);
  // Decodes a reply's body, and completes the handler with the result.
  void respondTo(const Reply& reply, const std::optional<ZELData>& body, std::int64_t msgType);

  // Makes a call that sends a request; reply makes the handler of its answer, null for nobody.
  // Errors: false where there was no memory for it; the handler then gets 101.
  template <class MakeReply, class Call>
  bool orRefuse(const MakeReply& reply, const Call& call) {
    const bool isSent = hasMemoryFor(call);
    if (!isSent) refuse(reply);
    return isSent;
  }
  template <class MakeReply>
  void refuse(const MakeReply& reply) {
    orCount([&] { postRefusal(reply()); });
  }

  // Makes a call of which nobody can be told that there was no memory for it: that is counted.
  template <class Call>
  void orCount(const Call& call) {
    if (!hasMemoryFor(call)) lostForMemory_.fetch_add(1);
  }
  std::uint64_t lostForMemory() const { return lostForMemory_.load(); }

  // Fails every pending handler, and then the capture that has no photo yet. Throws nothing where memory ends.
  void respondToAllWithError(int code);

  void addReceiver(std::shared_ptr<ZELCameraNotificationProtocol> receiver);
  void removeReceiver(const ZELCameraNotificationProtocol* receiver);
  void removeAllReceivers();
  // Calls every receiver before it returns, with the receivers' lock held.
  void notify(std::int64_t type, const std::optional<ZELMessageFields>& value);

  // Called when the engine's stack is destroyed: every pending handler of requests, captures and uploads gets 100.
  // Uploads and marker requests can be pending at any status.
  void failEverything();

  // Keeps the stack alive while receivers and steps run. Set before traffic starts.
  void setKeepAlive(const KeepAlive& keepAlive) { keepAlive_ = keepAlive; }

  // Runs the step now, on this thread, unless the engine was destroyed. For handlers, which may outlive it.
  std::function<void(const std::function<void(CameraDataParser&)>&)> whileAlive();

  CameraDataParser& parser() { return parser_; }
  ZELUCDFile& ucdFile() { return ucdFile_; }
  ZELCameraAccessory& accessory() { return accessory_; }
  platform::Queue& mainQueue() { return mainQueue_; }

 private:
  using Answer = std::optional<ZELMessageFields>;
  using Handlers = PendingTable<std::int64_t, RebackDic, Answer>;

  struct Receiver;

  void registerFamilies(Registered when);
  void registerFamily(const Family& family);
  void registerEvent(const CameraEvent& event);
  void statusChanged(LinkStatus status);
  bool isConnected() const { return accessory_.linkStatus() > LinkStatus::open; }
  void announce(std::int64_t msgType);
  void withdraw(std::int64_t msgType);
  void write(std::int64_t msgType, const ZELMessageFields& fields, bool isAnnounced);
  void wait(std::int64_t msgType, RebackDic rebackBlock);
  void post(const RebackDic& rebackBlock, const Answer& answer);
  void postRefusal(const RebackDic& rebackBlock);
  void failAll(int code);
  static void failCapture(CameraDataParser& parser, int code);
  std::shared_ptr<Receiver> takeReceiver(const ZELCameraNotificationProtocol* receiver);

  ZELCameraAccessory& accessory_;
  CameraDataParser& parser_;
  ZELUCDFile& ucdFile_;
  platform::Queue& mainQueue_;
  KeepAlive keepAlive_;  // set before traffic starts
  std::atomic<std::uint64_t> lostForMemory_ = 0;
  const std::shared_ptr<CallGate> alive_ = std::make_shared<CallGate>();

  Guarded<Handlers> msgBlockDic_;

  struct Receiver {
    std::shared_ptr<ZELCameraNotificationProtocol> object;
    std::atomic<bool> removed = false;  // gets no more events
  };

  // Held while receivers are called, so that removing one can wait for its call. Recursive, because a receiver may
  // cause an event.
  RecursiveMutex deliveryMutex_;
  using Receivers = std::vector<std::shared_ptr<Receiver>>;
  Guarded<Receivers> notificationReceivers_;

  Observation statusObservation_;  // last: destroyed before everything that it uses
};

}  // namespace zel

#include "command/request_engine.h"

#include <algorithm>
#include <new>
#include <string>
#include <utility>

#include "command/request_fields.h"

namespace zel {
namespace {

ZELMessageFields errorFields(int code) { return {{std::string(key::nsError), zelOSStatusError(code)}}; }

ByteView viewOf(const std::optional<ZELData>& body) { return body ? body->bytes() : ByteView(); }

}  // namespace

RequestEngine::RequestEngine(ZELCameraAccessory& accessory, CameraDataParser& parser, ZELUCDFile& ucdFile,
                             platform::Queue& mainQueue)
    : accessory_(accessory), parser_(parser), ucdFile_(ucdFile), mainQueue_(mainQueue) {
  registerFamilies(Registered::beforeTheEvents);
  for (const CameraEvent& event : kEvents) registerEvent(event);
  registerFamilies(Registered::afterTheEvents);
  statusObservation_ = accessory_.observeStatus([this](std::uint64_t status) { statusChanged(LinkStatus{status}); });
}

RequestEngine::~RequestEngine() { alive_->close(); }

void RequestEngine::registerFamilies(Registered when) {
  for (const Family& family : kFamilies) {
    if (family.registered == when) registerFamily(family);
  }
}

void RequestEngine::registerFamily(const Family& family) {
  const auto type = static_cast<std::int64_t>(family.type);
  const auto pack = [&family](std::int32_t, const ZELMessageFields& fields, void*) -> std::optional<ZELData> {
    if (family.body.empty()) return std::nullopt;
    Bytes body;
    body.reserve(family.body.size());
    for (const Field& field : family.body) field.append(body, fields, field.key);
    return ZELData(std::move(body));
  };
  parser_.registerMsgPacket(CameraMsgPacket(static_cast<std::int32_t>(family.request), pack), type);
  if (family.reply.form == Reply::Form::none) return;
  const auto read = [this, &family](std::uint64_t msgType, const std::optional<ZELData>& body, void*) {
    respondTo(family.reply, body, static_cast<std::int64_t>(msgType));
  };
  parser_.registerMsgParser(CameraMsgParser(static_cast<std::uint64_t>(type), read),
                            static_cast<std::int64_t>(replyTo(family.request)));
}

void RequestEngine::registerEvent(const CameraEvent& event) {
  const auto read = [this, &event](std::uint64_t type, const std::optional<ZELData>& payload, void*) {
    notify(static_cast<std::int64_t>(type), decodeEvent(event, viewOf(payload)));
  };
  parser_.registerMsgParser(CameraMsgParser(static_cast<std::uint64_t>(event.type), read),
                            static_cast<std::int64_t>(event.code));
}

// The request is announced before the status is read, so that a link that is lost after that fails it at any point.
void RequestEngine::send(std::int64_t msgType, const ZELMessageFields& fields, RebackDic rebackBlock) {
  if (rebackBlock) announce(msgType);
  if (isConnected()) {
    write(msgType, fields, rebackBlock != nullptr);
    return wait(msgType, std::move(rebackBlock));
  }
  if (!rebackBlock) return;
  withdraw(msgType);
  post(rebackBlock, errorFields(kZELErrorNotConnected));
}

void RequestEngine::postRefusal(const RebackDic& rebackBlock) {
  if (rebackBlock) return post(rebackBlock, errorFields(kZELErrorRefused));
  lostForMemory_.fetch_add(1);  // there is nobody to be told
}

void RequestEngine::msgReqSendSyncData(const ZELData& data, RebackDic rebackBlock) {
  constexpr auto msgType = static_cast<std::int64_t>(kRow<"registerMsgReqSendSyncData">.type);
  if (rebackBlock) announce(msgType);
  write(msgType, fieldsOf<"registerMsgReqSendSyncData">(data), rebackBlock != nullptr);
  wait(msgType, std::move(rebackBlock));
}

void RequestEngine::announce(std::int64_t msgType) {
  msgBlockDic_.with([msgType](Handlers& all) { all.announce(msgType); });
}

void RequestEngine::withdraw(std::int64_t msgType) {
  msgBlockDic_.with([msgType](Handlers& all) { all.withdraw(msgType); });
}

// A request that finds no memory was not made: nothing waits for its answer.
void RequestEngine::write(std::int64_t msgType, const ZELMessageFields& fields, bool isAnnounced) {
  try {
    if (const auto frame = parser_.packetMsgData(msgType, fields)) accessory_.writeData(*frame);
  } catch (const std::bad_alloc&) {
    if (isAnnounced) withdraw(msgType);
    throw;
  }
}

void RequestEngine::wait(std::int64_t msgType, RebackDic rebackBlock) {
  if (!rebackBlock) return;
  std::optional<RebackDic> handler(std::move(rebackBlock));
  const auto answer = msgBlockDic_.with([&](Handlers& all) { return all.put(msgType, handler); });
  if (answer) post(*handler, *answer);
}

void RequestEngine::respond(std::int64_t msgType, const std::optional<ZELMessageFields>& reply) {
  const auto rebackBlock = msgBlockDic_.with([&](Handlers& all) { return all.take(msgType, reply); });
  if (rebackBlock) post(*rebackBlock, reply);
}

void RequestEngine::respondWithError(std::int64_t msgType) { respond(msgType, errorFields(kZELErrorRefused)); }

void RequestEngine::respondTo(const Reply& reply, const std::optional<ZELData>& body, std::int64_t msgType) {
  Decoded decoded;
  const bool isRead = hasMemoryFor([&] { decoded = decodeReply(reply, viewOf(body)); });
  if (!isRead || decoded.refused) return respondWithError(msgType);
  respond(msgType, decoded.fields);
}

// Handlers are failed also where there is no memory for all of them together: then one by one.
void RequestEngine::respondToAllWithError(int code) {
  if (hasMemoryFor([&] { failAll(code); })) return;
  while (const auto rebackBlock = msgBlockDic_.with([](Handlers& all) { return all.takeAny(); })) {
    orCount([&] { post(*rebackBlock, errorFields(code)); });
  }
  orCount([&] { failCapture(parser_, code); });
}

// In one step, so that no handler comes between. All memory is taken before the first handler is.
void RequestEngine::failAll(int code) {
  const Answer failure = errorFields(code);
  const auto rebackBlocks = std::make_shared<std::vector<RebackDic>>();
  platform::Task step = [rebackBlocks, failure, alive = whileAlive(), code] {
    for (const auto& rebackBlock : *rebackBlocks) ifMemoryAllows([&] { rebackBlock(failure); });
    alive([code](CameraDataParser& parser) { failCapture(parser, code); });
  };
  *rebackBlocks = msgBlockDic_.with([&](Handlers& all) { return all.takeAll(failure); });
  // Nothing is posted for nobody: the last owner of an engine may be a task that outlives the main queue.
  if (rebackBlocks->empty() && !parser_.photoParser()) return;
  if (hasMemoryFor([&] { mainQueue_.post(std::move(step)); })) return;
  for (const auto& rebackBlock : *rebackBlocks) post(rebackBlock, failure);
  orCount([&] { failCapture(parser_, code); });
}

void RequestEngine::failCapture(CameraDataParser& parser, int code) {
  if (const auto photo = parser.photoParser()) photo->replyBlockWithError(zelOSStatusError(code));
}

// The step that fails the capture no longer runs once the engine is destroyed, so the capture is failed here.
void RequestEngine::failEverything() {
  respondToAllWithError(kZELErrorNotConnected);
  orCount([this] { failCapture(parser_, kZELErrorNotConnected); });
  ucdFile_.replyAllBlockWithErrorCode(kZELErrorNotConnected);
}

void RequestEngine::statusChanged(LinkStatus status) {
  if (status == LinkStatus::flowing) return;
  respondToAllWithError(kZELErrorNotConnected);
  ucdFile_.replyAllBlockWithErrorCode(kZELErrorNotConnected);
}

void RequestEngine::addReceiver(std::shared_ptr<ZELCameraNotificationProtocol> receiver) {
  if (!receiver) return;
  auto added = std::make_shared<Receiver>();
  added->object = std::move(receiver);
  notificationReceivers_.with([&](Receivers& all) { all.push_back(std::move(added)); });
}

void RequestEngine::removeReceiver(const ZELCameraNotificationProtocol* receiver) {
  while (takeReceiver(receiver)) continue;  // each may go with its last reference, and not under a lock
  if (insideCallback()) return;             // the receiver's call may be waiting for this thread
  const MutexLock delivered(deliveryMutex_);
}

void RequestEngine::removeAllReceivers() {
  Receivers removed;  // as above
  notificationReceivers_.with([&](Receivers& all) {
    removed.swap(all);
    for (const auto& one : removed) one->removed.store(true);
  });
}

std::shared_ptr<RequestEngine::Receiver> RequestEngine::takeReceiver(const ZELCameraNotificationProtocol* receiver) {
  return notificationReceivers_.with([&](Receivers& all) -> std::shared_ptr<Receiver> {
    const auto found = std::ranges::find_if(all, [&](const auto& one) { return one->object.get() == receiver; });
    if (found == all.end()) return nullptr;
    auto taken = std::move(*found);
    all.erase(found);
    taken->removed.store(true);
    return taken;
  });
}

// Deliberate: receivers run under the lock, so a removed one is not called any more. The list is copied first, so that
// a receiver that wrongly changes it from inside does no harm. A receiver that it removed may already be destroyed.
void RequestEngine::notify(std::int64_t type, const std::optional<ZELMessageFields>& value) {
  const auto held = keepAlive_.hold();
  const CallbackScope scope;
  const MutexLock delivery(deliveryMutex_);
  for (const auto& receiver : notificationReceivers_.get()) {
    if (!receiver->removed.load()) receiver->object->notificationType(type, value);
  }
}

// An answer that finds no memory becomes a refusal. The handler is copied: a task that could not be made takes what was
// moved into it along.
void RequestEngine::post(const RebackDic& rebackBlock, const Answer& answer) {
  if (hasMemoryFor([&] { mainQueue_.post([rebackBlock, answer] { rebackBlock(answer); }); })) return;
  orCount([&] {
    mainQueue_.post([rebackBlock, refusal = Answer(errorFields(kZELErrorRefused))] { rebackBlock(refusal); });
  });
}

std::function<void(const std::function<void(CameraDataParser&)>&)> RequestEngine::whileAlive() {
  return
      [alive = alive_, keepAlive = keepAlive_, &parser = parser_](const std::function<void(CameraDataParser&)>& step) {
        const auto held = keepAlive.hold();
        if (held) alive->enter([&] { step(parser); });
      };
}

}  // namespace zel

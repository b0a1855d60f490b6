#include "link/camera_session.h"

#include <ZELTarkaSDK/WireConstants.h>

#include "base/has_memory_for.h"

using zel::MutexLock;
using zel::SessionConnection;

namespace {

constexpr std::size_t kReadBuffer = 0x200000;  // 2 MiB: a whole preview burst in one read

}  // namespace

CameraSession::CameraSession(const zel::platform::Ports& ports, zel::AccessoryLink& accessory,
                             zel::InboundStream& parser)
    : ports_(ports), accessory_(accessory), parser_(parser) {}

CameraSession::~CameraSession() {
  closeSession();
  waitForThreadEnd();
}

bool CameraSession::openSessionWithAccessory(const std::shared_ptr<zel::platform::Accessory>& accessory,
                                             std::string_view protocol, const std::function<void()>& accepted) {
  return openAs(closeCurrent(), accessory, protocol, accepted);
}

std::uint64_t CameraSession::closeCurrent() {
  std::uint64_t opening = 0;
  Connection closed;
  {
    const MutexLock lock(mutex_);
    closed = takeCurrent(opening);
  }
  finishClosing(closed);
  return opening;
}

CameraSession::Connection CameraSession::takeCurrent(std::uint64_t& opening) {
  opening = ++openings_;
  mayBegin_ = false;
  return std::exchange(connection_, nullptr);
}

void CameraSession::finishClosing(const Connection& closed) {
  if (!closed) return;
  closed->close();
  parser_.clearData();  // the session thread may be parsing: the rest of its bytes is dropped
}

bool CameraSession::openAs(std::uint64_t opening, const std::shared_ptr<zel::platform::Accessory>& accessory,
                           std::string_view protocol, const std::function<void()>& accepted) {
  Connection connection;
  zel::ifMemoryAllows([&] { connection = connect(accessory, protocol); });
  if (!connection) return false;
  if (!install(opening, connection, accessory)) {
    connection->close();
    return false;
  }
  accessory_.successCreateSession();
  resetParser();
  return beginOrLeaveWaiting(connection, accepted);
}

// The thread is created before the session is announced, so that a failure needs no undoing.
CameraSession::Connection CameraSession::connect(const std::shared_ptr<zel::platform::Accessory>& accessory,
                                                 std::string_view protocol) {
  if (!accessory) return nullptr;
  auto session = ports_.accessories.openSession(accessory, protocol);
  if (!session) return nullptr;
  zel::ConnectionOwner& owner = *this;
  return SessionConnection::create(owner, parser_, std::move(session), ports_.threads, keepAlive_.hold());
}

bool CameraSession::install(std::uint64_t opening, const Connection& connection,
                            const std::shared_ptr<zel::platform::Accessory>& accessory) {
  const MutexLock lock(mutex_);
  if (openings_ != opening) return false;  // another thread opened or closed a session while this one was connecting
  connection_ = connection;
  sessionAccessory_ = accessory;
  return true;
}

bool CameraSession::beginOrLeaveWaiting(const Connection& connection, const std::function<void()>& accepted) {
  const MutexLock lock(mutex_);
  if (connection_ != connection) return false;
  if (accepted) accepted();
  mayBegin_ = true;
  if (!running_) begin(false);
  return true;
}

void CameraSession::begin(bool afterAnother) {
  mayBegin_ = false;
  running_ = connection_;
  running_->begin(afterAnother);
}

void CameraSession::threadEnded() {
  const MutexLock lock(mutex_);
  running_ = nullptr;
  if (connection_ && mayBegin_) begin(true);
}

// The previous thread may have delivered a last frame, or a last read, after this session was opened.
void CameraSession::threadBeganAfterAnother() {
  resetParser();
  accessory_.successCreateSession();
}

void CameraSession::resetParser() {
  parser_.clearData();
  parser_.setIsNeedDataSynchronism(true);
}

void CameraSession::streamFailed(SessionConnection& connection) {
  streamErrors_.fetch_add(1);
  reopen(connection);
}

void CameraSession::reopenAfterLostPosition() {
  Connection parsing;
  {
    const MutexLock lock(mutex_);
    parsing = running_;
  }
  if (parsing) reopen(*parsing);
}

void CameraSession::reopen(const SessionConnection& failed) {
  std::uint64_t opening = 0;
  Connection closed;
  std::shared_ptr<zel::platform::Accessory> accessory;
  {
    const MutexLock lock(mutex_);
    if (connection_.get() != &failed) return;  // closed or replaced already
    closed = takeCurrent(opening);
    accessory = sessionAccessory_;
  }
  finishClosing(closed);
  openAs(opening, accessory, zel::kAccessoryProtocol, {});
}

CameraSession::Connection CameraSession::current() const {
  const MutexLock lock(mutex_);
  return connection_;
}

void CameraSession::writeData(const ZELData& data) {
  if (const auto connection = current()) connection->writeData(data.bytes());
}

void CameraSession::writeData(const std::uint8_t* bytes, std::int32_t length) {
  if (bytes == nullptr || length < 1) return;
  if (const auto connection = current()) connection->writeData({bytes, static_cast<std::size_t>(length)});
}

std::uint64_t CameraSession::bytesToWrite() const {
  const auto connection = current();
  return connection ? connection->bytesToWrite() : 0;
}

void CameraSession::sendSyncTimeCmd() {
  if (const auto connection = current()) connection->sendSyncTimeCmd();
}

std::int64_t CameraSession::stampSyncTime() {
  const std::int64_t now = zel::platform::wholeMilliseconds(accessory_.absoluteTime());
  syncTimestamp_.store(now);
  return now;
}

std::int32_t CameraSession::syncTimeCount() const {
  const MutexLock lock(mutex_);
  return syncTimeCount_;
}

bool CameraSession::takeSyncTimeResend() {
  const MutexLock lock(mutex_);
  if (syncTimeCount_ < 1) return false;
  --syncTimeCount_;
  return true;
}

// One block for the session object, not for the process: two stacks read at the same time.
std::span<std::uint8_t> CameraSession::readBuffer() {
  if (readBuffer_.empty()) readBuffer_.resize(kReadBuffer);
  return readBuffer_;
}

void CameraSession::waitForThreadEnd() {
  Connection running;
  {
    const MutexLock lock(mutex_);
    running = running_;
  }
  if (running) running->join();
}

#include "link/session_connection.h"

#include <new>
#include <utility>

#include "base/has_memory_for.h"
#include "protocol/frame.h"

namespace zel {
namespace {

// Reads before parsing. Without a limit, a camera that never pauses would keep the session thread from parsing.
constexpr int kReadsPerBurst = 8;

}  // namespace

SessionConnection::SessionConnection(ConnectionOwner& owner, InboundStream& inbound,
                                     std::unique_ptr<platform::AccessorySession> session,
                                     std::shared_ptr<void> keepAlive)
    : owner_(owner), inbound_(inbound), session_(std::move(session)), keepAlive_(std::move(keepAlive)) {}

std::shared_ptr<SessionConnection> SessionConnection::create(ConnectionOwner& owner, InboundStream& inbound,
                                                             std::unique_ptr<platform::AccessorySession> session,
                                                             platform::Threads& threads,
                                                             std::shared_ptr<void> keepAlive) {
  const std::shared_ptr<SessionConnection> connection(
      new SessionConnection(owner, inbound, std::move(session), std::move(keepAlive)));
  return connection->startThread(threads) ? connection : nullptr;
}

bool SessionConnection::startThread(platform::Threads& threads) {
  const auto self = shared_from_this();
  const MutexLock lock(threadMutex_);
  sessionThread_ =
      threads.start("session thread", {.begin = [self](platform::RunLoop& runLoop) { self->runLoop_ = &runLoop; },
                                       .end = [self] { self->endSessionThread(); }});
  return sessionThread_ != nullptr;
}

void SessionConnection::begin(bool afterAnother) {
  afterAnother_ = afterAnother;
  begun_.store(true);
  if (!hasMemoryFor([this] { performOnThread(&SessionConnection::runSessionThread); })) stopThread();
}

void SessionConnection::runSessionThread() {
  if (closed_.load()) return;  // the request to end follows
  if (afterAnother_) owner_.threadBeganAfterAnother();
  if (!hasMemoryFor([this] { openStreams(); })) return fail();
  writeStreamData();  // bytes that were queued before the thread began
}

void SessionConnection::openStreams() {
  for (platform::Stream* stream : streams()) {
    stream->setDelegate(weak_from_this());
    stream->scheduleInRunLoop(*runLoop_);
    stream->open();
  }
}

// Streams that cannot be served for want of memory count as failed; without memory to open them again they stay so.
void SessionConnection::fail() {
  ifMemoryAllows([this] { owner_.streamFailed(*this); });
}

std::array<platform::Stream*, 2> SessionConnection::streams() {
  return {&session_->inputStream(), &session_->outputStream()};
}

void SessionConnection::close() {
  closed_.store(true);
  session_->letGo();  // the next session is opened before this one's streams are closed
  // A thread that never began has no work, and is not joined anywhere else.
  if (!begun_.load()) return join();
  // Where there is no memory to ask it, the thread is stopped, and closes the streams as it ends.
  if (!hasMemoryFor([this] { performOnThread(&SessionConnection::closeSesionThread); })) stopThread();
}

void SessionConnection::stopThread() {
  const MutexLock lock(threadMutex_);
  if (sessionThread_) sessionThread_->runLoop().stop();
}

void SessionConnection::closeSesionThread() {
  closeStreams();
  runLoop_->stop();
}

void SessionConnection::closeStreams() {
  for (platform::Stream* stream : streams()) {
    stream->close();
    if (runLoop_ != nullptr) stream->removeFromRunLoop(*runLoop_);
    ifMemoryAllows([stream] { stream->setDelegate({}); });
  }
}

void SessionConnection::endSessionThread() {
  closeStreams();  // again, because join() stops the loop without closing
  const auto kept = std::move(keepAlive_);
  if (begun_.load()) ifMemoryAllows([this] { owner_.threadEnded(); });
  join();  // releases the handle, which would otherwise form a cycle with this object
}

void SessionConnection::join() {
  std::unique_ptr<platform::Thread> thread;
  {
    const MutexLock lock(threadMutex_);
    thread = std::move(sessionThread_);
  }
}

void SessionConnection::performOnThread(void (SessionConnection::*step)()) {
  const MutexLock lock(threadMutex_);
  if (!sessionThread_) return;
  sessionThread_->runLoop().perform([self = shared_from_this(), step] { ifMemoryAllows([&] { (*self.*step)(); }); });
}

void SessionConnection::streamHandleEvent(platform::Stream&, platform::StreamEvent event) {
  if (!hasMemoryFor([&] { handle(event); })) fail();
}

void SessionConnection::handle(platform::StreamEvent event) {
  switch (event) {
    case platform::StreamEvent::hasBytesAvailable:
      return readStreamData();
    case platform::StreamEvent::hasSpaceAvailable:
      return writeStreamData();
    case platform::StreamEvent::errorOccurred:
      return owner_.streamFailed(*this);
    case platform::StreamEvent::openCompleted:
    case platform::StreamEvent::endEncountered:
      return;  // the end of the stream is handled when the accessory is detached
  }
}

void SessionConnection::readStreamData() {
  platform::InputStream& input = session_->inputStream();
  const std::span<std::uint8_t> buffer = owner_.readBuffer();
  std::size_t held = 0;
  for (int reads = 0; reads < kReadsPerBurst && !closed_.load() && input.hasBytesAvailable(); ++reads) {
    if (held != 0) inbound_.appendBytes(buffer.data(), held);
    const std::ptrdiff_t count = input.read(buffer);
    held = count < 1 ? 0 : static_cast<std::size_t>(count);
    if (held == 0) break;
  }
  if (!closed_.load()) inbound_.parserData(buffer.first(held));
}

// The thread is asked first: bytes that nobody would write must not be queued. It waits for the lock until they are.
void SessionConnection::writeData(ByteView bytes) {
  const MutexLock lock(writeDataLock_);
  scheduleWriting();
  enqueue(bytes);
}

void SessionConnection::scheduleWriting() {
  if (writeScheduled_.exchange(true)) return;
  try {
    performOnThread(&SessionConnection::writeStreamData);
  } catch (const std::bad_alloc&) {
    writeScheduled_.store(false);
    throw;
  }
}

void SessionConnection::enqueue(ByteView bytes) {
  writeData_.append(bytes);
  bytesToWrite_.fetch_add(bytes.size());
}

void SessionConnection::writeStreamData() {
  writeScheduled_.store(false);
  const MutexLock lock(writeDataLock_);
  drainWriteData();
}

void SessionConnection::drainWriteData() {
  platform::OutputStream& output = session_->outputStream();
  while (!writeData_.empty() && output.hasSpaceAvailable()) {
    const std::ptrdiff_t count = output.write(writeData_.view());
    if (count < 1) return;  // the rest goes out when the stream has space again
    writeData_.removeFirst(static_cast<std::size_t>(count));
    owner_.bytesWritten(static_cast<std::size_t>(count));
    bytesToWrite_.fetch_sub(static_cast<std::size_t>(count));
  }
}

void SessionConnection::syncCameraSystemTimeOnThread() {
  const MutexLock lock(writeDataLock_);
  Bytes time;
  appendLittleEndian(time, static_cast<std::uint64_t>(owner_.stampSyncTime()));
  enqueue(messageFrame(kSyncTimeRequest, time));
  drainWriteData();
}

}  // namespace zel

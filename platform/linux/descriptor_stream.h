#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include <ZELTarkaSDK/platform/accessory.h>

#include "platform/linux/linux_run_loop.h"
#include "platform/linux/unique_descriptor.h"

namespace zel::platform {

// The common part of both directions of a stream over a non-blocking descriptor: its state, run loop and delegate.
// Lives as long as its Stream or a pending wait; reports nothing after close().
// Thread: that of Stream.
class DescriptorStream : public std::enable_shared_from_this<DescriptorStream> {
 public:
  DescriptorStream(Stream& stream, UniqueDescriptor descriptor);
  virtual ~DescriptorStream();
  DescriptorStream(const DescriptorStream&) = delete;
  DescriptorStream& operator=(const DescriptorStream&) = delete;

  void setDelegate(std::weak_ptr<StreamDelegate> delegate);
  void schedule(RunLoop& runLoop);
  void unschedule(RunLoop& runLoop);
  void open();
  void close();

 protected:
  using Wait = asio::posix::stream_descriptor::wait_type;

  // Called when the stream is open, scheduled, and has reported openCompleted; again after it was rescheduled or has a
  // new delegate.
  virtual void run() = 0;
  // The descriptor may be ready for the awaited operation.
  virtual void ready() = 0;

  // Whether bytes can be read or written.
  bool usable() const { return opened_ && !ending_ && descriptor_.get() >= 0; }
  int descriptor() const { return descriptor_.get(); }

  // Calls ready() once the descriptor is ready. One wait at a time; a second call changes nothing.
  void wait(Wait what);
  // Reports to the delegate. False without a delegate.
  bool report(StreamEvent event);
  // Reports to the delegate from the run loop, as the last event.
  void end(StreamEvent event);

 private:
  bool running() const { return opened_ && told_ && loop_ && !finished_; }
  void start();
  void later(void (DescriptorStream::*step)());
  void begin();
  void finish();
  bool watch();
  void stopWaiting();

  Stream* stream_;  // null after close()
  UniqueDescriptor descriptor_;
  std::weak_ptr<StreamDelegate> delegate_;
  std::shared_ptr<LinuxRunLoop> loop_;
  std::optional<asio::posix::stream_descriptor> watched_;  // the descriptor, registered with the run loop's io_context
  std::uint64_t schedule_ = 0;  // number of the scheduling; events of earlier ones are dropped
  std::uint64_t waits_ = 0;     // number of the wait; earlier ones are ignored
  std::optional<StreamEvent> ending_;
  bool opened_ = false;
  bool told_ = false;  // openCompleted has been reported
  bool finished_ = false;
  bool waiting_ = false;
};

}  // namespace zel::platform

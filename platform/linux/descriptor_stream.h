#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include <ZELTarkaSDK/platform/accessory.h>
#include "platform/linux/linux_run_loop.h"
#include "platform/linux/unique_descriptor.h"

namespace zel::platform {

// What both directions of a stream over a non-blocking descriptor have in common: when it is open, on which run loop,
// and whom it tells. Lives as long as its Stream or a wait that is still to be told of; close() makes it silent.
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

  // The stream runs: it is open, scheduled, and has told so. Called again when it has been rescheduled or has a new
  // delegate.
  virtual void run() = 0;
  // The descriptor may be ready for what was waited for.
  virtual void ready() = 0;

  // Whether bytes may pass.
  bool usable() const { return opened_ && !ending_ && descriptor_.get() >= 0; }
  int descriptor() const { return descriptor_.get(); }

  // Calls ready() once the descriptor is ready. One wait at a time; a second call changes nothing.
  void wait(Wait what);
  // Tells the delegate. Returns false when there is nobody to tell.
  bool report(StreamEvent event);
  // Tells the delegate from the run loop, as the last event.
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
  std::optional<asio::posix::stream_descriptor> watched_;  // the descriptor, as the run loop's io_context sees it
  std::uint64_t schedule_ = 0;  // counts schedulings: what an earlier one still has to tell is void
  std::uint64_t waits_ = 0;     // the same for the waits
  std::optional<StreamEvent> ending_;
  bool opened_ = false;
  bool told_ = false;  // openCompleted has been reported
  bool finished_ = false;
  bool waiting_ = false;
};

}  // namespace zel::platform

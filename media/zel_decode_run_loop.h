#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

#include <ZELTarkaSDK/PreviewStatistics.h>
#include <ZELTarkaSDK/ZELPixelBufferDataProtocol.h>

#include <ZELTarkaSDK/platform/run_loop.h>
#include "base/mutex.h"
#include "media/decode_queue.h"
#include "media/zel_h264_decoder.h"

// The thread "preview decode": takes units, hands their pictures to the delegate, and keeps the latest for polling.
// Owner:  letting go of the object ends its thread without waiting for it; what the thread is at, the delegate's call
//         included, may end a little later. Threads and decoders must outlive the thread.
class ZELDecodeRunLoop : public std::enable_shared_from_this<ZELDecodeRunLoop> {
 public:
  using Unit = zel::DecodeQueue::Unit;
  using Picture = zel::PictureQueue::Picture;

  // initWidthSps:spsSize:pps:ppsSize:delegate: ("Width" is the interface's spelling) - the delegate is held weakly.
  // Errors: null where the parameter sets make no decoder.
  static std::shared_ptr<ZELDecodeRunLoop> initWidthSps(zel::platform::Threads& threads,
                                                        zel::platform::VideoDecoders& decoders, zel::ByteView sps,
                                                        zel::ByteView pps,
                                                        std::weak_ptr<ZELPixelBufferDataProtocol> delegate);
  ~ZELDecodeRunLoop();
  ZELDecodeRunLoop(const ZELDecodeRunLoop&) = delete;
  ZELDecodeRunLoop& operator=(const ZELDecodeRunLoop&) = delete;

  // Starts the thread; only the first call does.
  // Thread: any thread.
  // Errors: false where no thread can be had.
  bool start();

  // Ends the thread after the unit that it is at, without waiting; pictures that the decoder holds back never come.
  // Before the thread has begun to run its loop, this has no effect.
  // Thread: any thread.
  void stop();

  // appendDecodeData: - queues one unit: 4 bytes of length, highest first, then the NAL header and the rest. Units that
  // come before the thread runs its loop wait for the first that comes after.
  // Units:  the unit's timestamp in milliseconds.
  // Errors: none; where 16 wait, the oldest is dropped unless it is a key unit.
  // Thread: any thread. Never waits for decoding.
  void appendDecodeData(Unit unit) ZEL_EXCLUDES(h264DataMutex_, loopMutex_);

  // The oldest picture that nobody has polled, null when there is none.
  // Thread: any thread, but not inside the delegate's call.
  Picture getNextMediaPixelBuffer() ZEL_EXCLUDES(pixelBufferMutex_);

  // What has become of the units.
  // Thread: any thread.
  zel::PreviewStatistics statistics() const;

  // Forgets all units and pictures that wait.
  // Thread: as getNextMediaPixelBuffer.
  void clearData() ZEL_EXCLUDES(h264DataMutex_, pixelBufferMutex_);

 private:
  ZELDecodeRunLoop(zel::platform::Threads& threads, std::unique_ptr<ZELH264Decoder> h264Decoder,
                   std::weak_ptr<ZELPixelBufferDataProtocol> delegate);

  void abandon() ZEL_EXCLUDES(loopMutex_);
  void stopRunLoop() ZEL_REQUIRES(loopMutex_);
  void publish(zel::platform::RunLoop& runLoop) ZEL_EXCLUDES(loopMutex_);  // decode thread, before its loop runs
  void withdraw() ZEL_EXCLUDES(loopMutex_);                                // decode thread, after it
  void decodeData();                                                       // decode thread: one unit a call
  Unit takeUnit() ZEL_EXCLUDES(h264DataMutex_);
  void signalIfMoreWaits() ZEL_EXCLUDES(h264DataMutex_, loopMutex_);
  void deliver(const zel::platform::DecodedPicture& picture) ZEL_EXCLUDES(pixelBufferMutex_);

  zel::platform::Threads& threads_;
  const std::unique_ptr<ZELH264Decoder> h264Decoder_;  // decode thread only
  const std::weak_ptr<ZELPixelBufferDataProtocol> delegate_;

  std::atomic<std::uint64_t> units_ = 0;
  std::atomic<std::uint64_t> dropped_ = 0;
  std::atomic<std::uint64_t> withoutPicture_ = 0;
  std::atomic<std::uint64_t> pictures_ = 0;

  zel::Mutex h264DataMutex_;
  zel::DecodeQueue h264Datas_ ZEL_GUARDED_BY(h264DataMutex_);

  zel::Mutex pixelBufferMutex_;  // held during the delegate's call; never together with the one above
  zel::PictureQueue pixelBuffers_ ZEL_GUARDED_BY(pixelBufferMutex_);

  zel::Mutex loopMutex_;
  zel::platform::RunLoop* runLoop_ ZEL_GUARDED_BY(loopMutex_) = nullptr;  // set while the thread runs it
  std::unique_ptr<zel::platform::RunLoopSource> source_ ZEL_GUARDED_BY(loopMutex_);
  bool abandoned_ ZEL_GUARDED_BY(loopMutex_) = false;

  zel::Mutex threadMutex_;
  std::unique_ptr<zel::platform::Thread> thread_ ZEL_GUARDED_BY(threadMutex_);  // last: it uses all the rest
};

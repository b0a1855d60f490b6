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

// The thread "preview decode": decodes units, delivers their pictures to the delegate, and keeps the latest for
// polling.
// Owner:  releasing the object ends its thread without waiting for it; a unit or a delegate's call in progress may
//         finish a little later. Threads and decoders must outlive the thread.
class ZELDecodeRunLoop : public std::enable_shared_from_this<ZELDecodeRunLoop> {
 public:
  using Unit = zel::DecodeQueue::Unit;
  using Picture = zel::PictureQueue::Picture;

  // initWidthSps:spsSize:pps:ppsSize:delegate: ("Width" is the interface's spelling) - the delegate is held weakly.
  // Errors: null when no decoder can be created for the parameter sets.
  static std::shared_ptr<ZELDecodeRunLoop> initWidthSps(zel::platform::Threads& threads,
                                                        zel::platform::VideoDecoders& decoders, zel::ByteView sps,
                                                        zel::ByteView pps,
                                                        std::weak_ptr<ZELPixelBufferDataProtocol> delegate);
  ~ZELDecodeRunLoop();
  ZELDecodeRunLoop(const ZELDecodeRunLoop&) = delete;
  ZELDecodeRunLoop& operator=(const ZELDecodeRunLoop&) = delete;

  // Starts the thread; later calls do nothing.
  // Thread: any thread.
  // Errors: false when no thread can be started.
  bool start();

  // Ends the thread after the current unit, without waiting; pictures that the decoder holds back are not delivered. No
  // effect before the thread runs its loop.
  // Thread: any thread.
  void stop();

  // appendDecodeData: - queues one unit: a 4-byte big-endian length, then the NAL header and the payload. Units queued
  // before the thread runs its loop are decoded only after the first unit that is queued later.
  // Units:  the unit's timestamp in milliseconds.
  // Errors: none; when 16 are queued, the oldest is dropped unless it is a key unit.
  // Thread: any thread. Never waits for decoding.
  void appendDecodeData(Unit unit) ZEL_EXCLUDES(h264DataMutex_, loopMutex_);

  // The oldest picture that was not polled yet; null when there is none.
  // Thread: any thread, but not inside the delegate's call.
  Picture getNextMediaPixelBuffer() ZEL_EXCLUDES(pixelBufferMutex_);

  // Whether its thread found no memory to begin; nothing is ever decoded then.
  // Thread: any thread.
  bool hasFailed() const { return state_.load() == State::failed; }

  // Counters of the units.
  // Thread: any thread.
  zel::PreviewStatistics statistics() const;

  // Drops all queued units and pictures.
  // Thread: as getNextMediaPixelBuffer.
  void clearData() ZEL_EXCLUDES(h264DataMutex_, pixelBufferMutex_);

 private:
  ZELDecodeRunLoop(zel::platform::Threads& threads, std::unique_ptr<ZELH264Decoder> h264Decoder,
                   std::weak_ptr<ZELPixelBufferDataProtocol> delegate);

  enum class State {
    idle,       // no thread runs the loop yet, or any more: units wait
    running,    // units are decoded; runLoop_ and source_ are there
    failed,     // there was no memory for the source: the thread ended at once
    abandoned,  // nobody holds the object: a thread that begins only now ends at once
  };

  // The only writer of the state.
  void become(State state) ZEL_REQUIRES(loopMutex_) { state_.store(state); }
  void abandon() ZEL_EXCLUDES(loopMutex_);
  void stopRunLoop() ZEL_REQUIRES(loopMutex_);
  void begin(zel::platform::RunLoop& runLoop) ZEL_EXCLUDES(loopMutex_);  // decode thread, before its loop runs
  void publish(zel::platform::RunLoop& runLoop) ZEL_EXCLUDES(loopMutex_);
  void withdraw() ZEL_EXCLUDES(loopMutex_);  // decode thread, after it
  void decodeData();                         // decode thread: one unit a call
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
  zel::platform::RunLoop* runLoop_ ZEL_GUARDED_BY(loopMutex_) = nullptr;  // set while the thread runs the loop
  std::unique_ptr<zel::platform::RunLoopSource> source_ ZEL_GUARDED_BY(loopMutex_);
  std::atomic<State> state_ = State::idle;  // written with the lock held

  zel::Mutex threadMutex_;
  std::unique_ptr<zel::platform::Thread> thread_ ZEL_GUARDED_BY(threadMutex_);  // last: uses all other members
};

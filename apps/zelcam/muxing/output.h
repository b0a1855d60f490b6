#pragma once

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <random>
#include <string>
#include <thread>

#include "apps/zelcam/muxing/latency_histogram.h"
#include "apps/zelcam/muxing/packet_queue.h"
#include "apps/zelcam/muxing/retry_policy.h"
#include "apps/zelcam/muxing/sink.h"

namespace zel::app {

// The statistics of an output.
struct OutputReport {
  std::string name;
  std::uint64_t pictures = 0, audioFrames = 0;  // written
  std::uint64_t bytes = 0;                      // of these
  std::uint64_t dropped = 0;                    // packets that were not written
  int connections = 0;
  Fault fault;  // why it ended early, or with an error
  LatencyHistogram latency;
};

struct OutputRules {
  std::string name;
  // Creates the sink of a new attempt; each sink is opened once.
  std::function<std::unique_ptr<Sink>()> makeSink;
  // Receives messages for people.
  // Thread: the output's.
  std::function<void(const std::string&)> tell;
  std::optional<RetryRules> retry;  // nothing: no retry, as for a file
  QueueLimits limits;
  std::optional<double> secondsToFinish;  // for data that another process must accept
};

// One output with its own thread and queue, so that a slow or dead output does not block others.
// Thread: any thread.
class Output {
 public:
  explicit Output(OutputRules rules);
  ~Output();  // finishes
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;

  // The headers, once, and then packets. Neither waits.
  void begin(const StreamHeaders& headers);
  void put(const MediaPacket& packet);

  // No more packets follow. Does not wait; join() waits until everything is written or has failed.
  void finish();
  void join();

  // Whether it ended early.
  bool hasFailed() const;
  OutputReport report() const;

 private:
  using Lock = std::unique_lock<std::mutex>;

  void run();
  bool waitForHeaders();
  Fault connect();
  Fault writeAll();
  std::optional<MediaPacket> nextPacket();
  void count(const MediaPacket& packet);
  void countLeftOut();
  bool waitBeforeRetry(const std::string& fault);
  std::optional<double> nextWait();
  void fail(const std::string& fault);

  const OutputRules rules_;
  RetryPolicy policy_;                                   // output's thread only
  std::minstd_rand random_;                              // output's thread only
  std::chrono::steady_clock::time_point connectedAt_{};  // output's thread only
  bool wasConnected_ = false;                            // output's thread only
  bool wasEverConnected_ = false;                        // output's thread only
  LeftOut leftOut_;                                      // output's thread only; reported so far, by this sink

  mutable std::mutex mutex_;  // guards the rest
  std::condition_variable changed_;
  std::optional<StreamHeaders> headers_;
  PacketQueue queue_;
  bool takes_ = false;
  bool finishing_ = false;
  bool toldSlow_ = false;
  bool failed_ = false;
  std::shared_ptr<Sink> sink_;
  OutputReport report_;

  std::thread thread_;  // last: destroyed before the members that it uses
};

}  // namespace zel::app

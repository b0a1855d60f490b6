#pragma once

#include <ZELTarkaSDK/OutputReport.h>

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <random>
#include <string>
#include <thread>

#include "outputs/latency_histogram.h"
#include "outputs/packet_queue.h"
#include "outputs/retry_policy.h"
#include "outputs/sink.h"

namespace zel {

struct OutputRules {
  std::string name;
  // Creates the sink of a new attempt; each sink is opened once.
  std::function<std::unique_ptr<Sink>()> makeSink;
  // Receives messages for people.
  //
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

  OutputState state() const;
  OutputReport report() const;

 private:
  using Lock = std::unique_lock<std::mutex>;

  void run();
  void writeStream();
  void failForMemory();
  bool waitForHeaders();
  Fault connect();
  Fault writeAll();
  std::optional<MediaPacket> nextPacket();
  void count(const MediaPacket& packet);
  void countLeftOut();
  bool waitBeforeRetry(const std::string& fault);
  std::optional<double> nextWait();
  void fail(const std::string& fault);
  void setState(const Lock& lock, OutputState to);
  bool takesPackets(const Lock& lock) const;
  void letGoOfSink(const Lock& lock);

  const OutputRules rules_;
  RetryPolicy policy_;                                                // output's thread only
  std::minstd_rand random_;                                           // also
  std::optional<std::chrono::steady_clock::time_point> connectedAt_;  // also; of the connection that there is
  LeftOut leftOut_;                                                   // also; by this sink, as far as the report knows

  std::mutex joining_;
  mutable std::mutex mutex_;  // guards the rest
  std::condition_variable changed_;
  std::optional<StreamHeaders> headers_;
  PacketQueue queue_;
  bool finishing_ = false;  // no more comes
  bool toldSlow_ = false;
  std::shared_ptr<Sink> sink_;
  LatencyHistogram latency_;
  OutputReport report_;  // its state: setState() alone writes it

  std::thread thread_;  // last: destroyed before the members that it uses
};

}  // namespace zel

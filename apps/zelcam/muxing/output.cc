#include "apps/zelcam/muxing/output.h"

#include <fmt/format.h>

#include <utility>

namespace zel::app {
namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point then) { return std::chrono::duration<double>(Clock::now() - then).count(); }

}  // namespace

Output::Output(OutputRules rules)
    : rules_(std::move(rules)),
      policy_(rules_.retry.value_or(RetryRules{})),
      random_(std::random_device{}()),
      queue_(rules_.limits),
      takes_(!rules_.retry) {
  report_.name = rules_.name;
  thread_ = std::thread([this] { run(); });
}

Output::~Output() {
  finish();
  join();
}

void Output::begin(const StreamHeaders& headers) {
  const Lock lock(mutex_);
  if (!headers_) headers_ = headers;
  changed_.notify_all();
}

void Output::put(const MediaPacket& packet) {
  bool tooSlow = false;
  {
    const Lock lock(mutex_);
    if (failed_ || finishing_) return;
    if (!takes_) {
      ++report_.dropped;
      return;
    }
    tooSlow = queue_.put(packet) && !std::exchange(toldSlow_, true);
    changed_.notify_all();
  }
  if (tooSlow) rules_.tell(fmt::format("{} is too slow: pictures are dropped", rules_.name));
}

void Output::finish() {
  const Lock lock(mutex_);
  finishing_ = true;
  // Does not wait for a server that is not connected yet.
  if (sink_ && rules_.secondsToFinish) sink_->endWithin(takes_ ? *rules_.secondsToFinish : 0);
  changed_.notify_all();
}

void Output::join() {
  if (thread_.joinable()) thread_.join();
}

bool Output::hasFailed() const {
  const Lock lock(mutex_);
  return failed_;
}

OutputReport Output::report() const {
  const Lock lock(mutex_);
  OutputReport report = report_;
  report.dropped += queue_.dropped();
  return report;
}

// Output's thread

void Output::run() {
  if (!waitForHeaders()) return;
  while (true) {
    Fault fault = connect();
    if (!fault) fault = writeAll();
    if (!fault) return;
    if (!rules_.retry || !waitBeforeRetry(*fault)) return fail(*fault);
  }
}

bool Output::waitForHeaders() {
  Lock lock(mutex_);
  while (!headers_ && !finishing_) changed_.wait(lock);
  return headers_.has_value();
}

Fault Output::connect() {
  std::shared_ptr<Sink> sink = rules_.makeSink();
  {
    const Lock lock(mutex_);
    if (finishing_ && rules_.secondsToFinish) sink->endWithin(0);
    sink_ = sink;
  }
  leftOut_ = {};
  if (Fault fault = sink->open(*headers_)) return fault;
  connectedAt_ = Clock::now();
  wasConnected_ = true;
  if (rules_.retry)
    rules_.tell(fmt::format("{} is connected{}", rules_.name, std::exchange(wasEverConnected_, true) ? " again" : ""));
  const Lock lock(mutex_);
  ++report_.connections;
  takes_ = true;
  return std::nullopt;
}

Fault Output::writeAll() {
  while (const auto packet = nextPacket()) {
    if (Fault fault = sink_->write(*packet)) return fault;
    count(*packet);
    countLeftOut();
  }
  Fault fault = sink_->finish();
  countLeftOut();
  return fault;
}

std::optional<MediaPacket> Output::nextPacket() {
  Lock lock(mutex_);
  while (queue_.empty() && !finishing_) changed_.wait(lock);
  return queue_.take();
}

void Output::count(const MediaPacket& packet) {
  const Lock lock(mutex_);
  ++(packet.track == Track::video ? report_.pictures : report_.audioFrames);
  report_.bytes += packet.data.size();
  if (packet.arrival) report_.latency.add(1000 * secondsSince(*packet.arrival));
}

// A sink may leave out a packet after it has accepted it.
void Output::countLeftOut() {
  const LeftOut now = sink_->leftOut();
  const std::uint64_t pictures = now.pictures - leftOut_.pictures, audioFrames = now.audioFrames - leftOut_.audioFrames;
  leftOut_ = now;
  const Lock lock(mutex_);
  report_.pictures -= pictures;
  report_.audioFrames -= audioFrames;
  report_.dropped += pictures + audioFrames;
}

bool Output::waitBeforeRetry(const std::string& fault) {
  const std::optional<double> wait = nextWait();
  Lock lock(mutex_);
  sink_.reset();
  takes_ = false;
  queue_.restart();
  if (!wait || finishing_) return false;
  lock.unlock();
  rules_.tell(fmt::format("{}; trying again in {:.1f} s ({} of {})", fault, *wait, policy_.attempt(), policy_.most()));
  lock.lock();
  changed_.wait_for(lock, std::chrono::duration<double>(*wait), [this] { return finishing_; });
  return !finishing_;
}

std::optional<double> Output::nextWait() {
  const double lasted = std::exchange(wasConnected_, false) ? secondsSince(connectedAt_) : 0;
  return policy_.next(lasted, std::uniform_real_distribution<double>(0, 1)(random_));
}

void Output::fail(const std::string& fault) {
  rules_.tell(fault);
  const Lock lock(mutex_);
  failed_ = true;
  takes_ = false;
  queue_.restart();
  sink_.reset();
  report_.fault = fault;
}

}  // namespace zel::app

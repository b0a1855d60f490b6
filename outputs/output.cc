#include "outputs/output.h"

#include <fmt/format.h>

#include <system_error>
#include <utility>

#include "base/has_memory_for.h"

namespace zel {
namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point then) { return std::chrono::duration<double>(Clock::now() - then).count(); }

}  // namespace

Output::Output(OutputRules rules)
    : rules_(std::move(rules)),
      policy_(rules_.retry.value_or(RetryRules{})),
      random_(std::random_device{}()),
      queue_(rules_.limits) {
  report_.name = rules_.name;
  try {
    thread_ = std::thread([this] { run(); });
  } catch (const std::system_error&) {
    fail(fmt::format("{}: no thread can be started", rules_.name));
  }
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
    if (finishing_ || report_.state == OutputState::failed) return;
    if (!takesPackets(lock)) {
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
  if (sink_ && rules_.secondsToFinish) sink_->endWithin(takesPackets(lock) ? *rules_.secondsToFinish : 0);
  changed_.notify_all();
}

void Output::join() {
  const Lock lock(joining_);
  if (thread_.joinable()) thread_.join();
}

OutputState Output::state() const {
  const Lock lock(mutex_);
  return report_.state;
}

OutputReport Output::report() const {
  const Lock lock(mutex_);
  OutputReport report = report_;
  report.dropped += queue_.dropped();
  report.medianLatency = latency_.quantile(0.5);
  report.latency99 = latency_.quantile(0.99);
  return report;
}

// A file takes packets from the beginning, so that none is lost while it is opened; a server those of its connections.
bool Output::takesPackets(const Lock&) const { return !rules_.retry || report_.state == OutputState::writing; }

void Output::setState(const Lock&, OutputState to) {
  report_.state = to;
  changed_.notify_all();
}

// Output's thread

void Output::run() {
  if (!hasMemoryFor([this] { writeStream(); })) failForMemory();
}

void Output::writeStream() {
  bool goesOn = waitForHeaders();
  while (goesOn) {
    Fault fault = connect();
    if (!fault) fault = writeAll();
    if (!fault) break;
    goesOn = rules_.retry && waitBeforeRetry(*fault);
    if (!goesOn) return fail(*fault);
  }
  setState(Lock(mutex_), OutputState::finished);
}

bool Output::waitForHeaders() {
  Lock lock(mutex_);
  while (!headers_ && !finishing_) changed_.wait(lock);
  return headers_.has_value();
}

Fault Output::connect() {
  setState(Lock(mutex_), OutputState::connecting);
  std::shared_ptr<Sink> sink = rules_.makeSink();
  bool again = false;
  {
    const Lock lock(mutex_);
    if (finishing_ && rules_.secondsToFinish) sink->endWithin(0);
    sink_ = sink;
    again = report_.connections > 0;
  }
  leftOut_ = {};
  if (Fault fault = sink->open(*headers_)) return fault;
  connectedAt_ = Clock::now();
  if (rules_.retry) rules_.tell(fmt::format("{} is connected{}", rules_.name, again ? " again" : ""));
  const Lock lock(mutex_);
  ++report_.connections;
  setState(lock, OutputState::writing);
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
  if (packet.arrival) latency_.add(1000 * secondsSince(*packet.arrival));
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
  letGoOfSink(lock);
  setState(lock, OutputState::retrying);
  if (!wait || finishing_) return false;
  lock.unlock();
  rules_.tell(fmt::format("{}; trying again in {:.1f} s ({} of {})", fault, *wait, policy_.attempt(), policy_.most()));
  lock.lock();
  changed_.wait_for(lock, std::chrono::duration<double>(*wait), [this] { return finishing_; });
  if (!finishing_) ++report_.retries;
  return !finishing_;
}

std::optional<double> Output::nextWait() {
  const auto connectedAt = std::exchange(connectedAt_, std::nullopt);
  const double lasted = connectedAt ? secondsSince(*connectedAt) : 0;
  return policy_.next(lasted, std::uniform_real_distribution<double>(0, 1)(random_));
}

// The output is at its end first, and then, if that can be, in words.
void Output::failForMemory() {
  {
    const Lock lock(mutex_);
    letGoOfSink(lock);
    report_.fault.emplace();
    setState(lock, OutputState::failed);
  }
  ifMemoryAllows([this] { fail(fmt::format("{}: there is not enough memory", rules_.name)); });
}

void Output::fail(const std::string& fault) {
  rules_.tell(fault);
  const Lock lock(mutex_);
  letGoOfSink(lock);
  report_.fault = fault;
  setState(lock, OutputState::failed);
}

void Output::letGoOfSink(const Lock&) {
  queue_.restart();
  sink_.reset();
}

}  // namespace zel

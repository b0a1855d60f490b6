#include <ZELTarkaSDK/Outputs.h>

#include <algorithm>
#include <utility>

#include "base/mutex.h"
#include "outputs/libav_sink.h"
#include "outputs/mp4_sink.h"
#include "outputs/output.h"

namespace zel {
namespace {

constexpr double kSecondsToFinish = 5;

OutputRules rulesFor(const OutputAddress& address, const Outputs::Tell& tell) {
  OutputRules rules;
  rules.name = address.name();
  rules.tell = tell;
  if (address.isServer()) rules.retry = RetryRules{};
  if (address.isServer() || address.kind == OutputKind::standardOutput) rules.secondsToFinish = kSecondsToFinish;
  rules.makeSink = [address, tell]() -> std::unique_ptr<Sink> {
    if (address.kind == OutputKind::mp4) return std::make_unique<Mp4Sink>(address, tell);
    return std::make_unique<LibavSink>(address);
  };
  return rules;
}

// One of the outputs. Added while the stream runs, it begins at time 0 all the same.
struct Member {
  int id = 0;
  std::shared_ptr<Output> output;
  bool isLate = false;
  std::optional<std::int64_t> origin;  // of a late one: the stream's time of its first picture

  // The packet with its time in this output; nothing for what comes before its first picture.
  std::optional<MediaPacket> placed(const MediaPacket& packet) {
    if (!isLate) return packet;
    if (!origin && packet.key) origin = packet.time;
    if (!origin || packet.time < *origin) return std::nullopt;
    MediaPacket moved = packet;
    moved.time -= *origin;
    return moved;
  }

  OutputReport report() const {
    OutputReport report = output->report();
    report.id = id;
    return report;
  }
};

}  // namespace

struct Outputs::State {
  std::vector<Member> all() const {
    const MutexLock lock(mutex);
    return members;
  }

  Tell tell;
  mutable Mutex mutex;
  std::vector<Member> members ZEL_GUARDED_BY(mutex);
  std::optional<StreamHeaders> headers ZEL_GUARDED_BY(mutex);
  int newest ZEL_GUARDED_BY(mutex) = 0;
  bool isFinished ZEL_GUARDED_BY(mutex) = false;
};

Outputs::Outputs(Tell tell) : state_(std::make_unique<State>()) {
  state_->tell = tell ? std::move(tell) : [](const std::string&) {};
}

Outputs::~Outputs() { finish(); }

int Outputs::add(const OutputAddress& address) {
  const MutexLock lock(state_->mutex);
  if (state_->isFinished) return 0;
  Member member{++state_->newest, std::make_shared<Output>(rulesFor(address, state_->tell)), false, std::nullopt};
  member.isLate = state_->headers.has_value();
  if (member.isLate) member.output->begin(*state_->headers);
  state_->members.push_back(std::move(member));
  return state_->newest;
}

std::optional<OutputReport> Outputs::remove(int id) {
  Member removed;
  {
    const MutexLock lock(state_->mutex);
    const auto found = std::ranges::find(state_->members, id, &Member::id);
    if (found == state_->members.end()) return std::nullopt;
    removed = std::move(*found);
    state_->members.erase(found);
  }
  removed.output->finish();
  removed.output->join();
  return removed.report();
}

void Outputs::onHeaders(const StreamHeaders& headers) {
  const MutexLock lock(state_->mutex);
  state_->headers = headers;
  for (const Member& member : state_->members) member.output->begin(headers);
}

// An output tells people, who may ask for reports, with no lock held.
void Outputs::onPacket(const MediaPacket& packet) {
  std::vector<std::pair<std::shared_ptr<Output>, MediaPacket>> placed;
  {
    const MutexLock lock(state_->mutex);
    for (Member& member : state_->members)
      if (auto moved = member.placed(packet)) placed.emplace_back(member.output, std::move(*moved));
  }
  for (const auto& [output, moved] : placed) output->put(moved);
}

void Outputs::finish() {
  {
    const MutexLock lock(state_->mutex);
    state_->isFinished = true;
  }
  const std::vector<Member> members = state_->all();
  for (const Member& member : members) member.output->finish();
  for (const Member& member : members) member.output->join();
}

bool Outputs::haveAllFailed() const {
  const std::vector<Member> members = state_->all();
  return !members.empty() && std::ranges::all_of(members, [](const Member& member) {
    return member.output->state() == OutputState::failed;
  });
}

std::vector<OutputReport> Outputs::reports() const {
  std::vector<OutputReport> reports;
  for (const Member& member : state_->all()) reports.push_back(member.report());
  return reports;
}

}  // namespace zel

#include "gateway/outputs/camera_outputs.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <utility>

namespace zel::gateway {
namespace {

CameraError invalid(std::string why) { return {CameraError::Reason::invalid, std::move(why)}; }

bool isSameSize(const std::optional<StitchedSize>& one, const std::optional<StitchedSize>& other) {
  if (!one || !other) return !one && !other;
  return one->width == other->width && one->height == other->height;
}

}  // namespace

CameraOutputs::CameraOutputs(Options options, std::shared_ptr<OutputStreams> streams)
    : options_(std::move(options)), streams_(std::move(streams)) {}

CameraOutputs::~CameraOutputs() {
  for (const Member& member : members()) static_cast<void>(end(member.id));
}

std::vector<CameraOutputs::Member> CameraOutputs::members() const {
  const MutexLock lock(mutex_);
  return members_;
}

// Pictures of one size are stitched and encoded once, so that they have one bitrate.
std::optional<CameraError> CameraOutputs::refusal(const OutputRequest& request) const {
  const std::vector<Member> present = members();
  if (present.size() >= options_.most)
    return invalid(fmt::format("there are {} outputs already; end one of them first", present.size()));
  if (!request.stitched) return std::nullopt;
  std::set<const Shared*> others;
  for (const Member& member : present) {
    const auto& stitched = member.shared->stitched;
    if (!stitched) continue;
    if (!isSameSize(stitched, request.stitched)) {
      others.insert(member.shared.get());
    } else if (stitched->bitrate != request.stitched->bitrate) {
      return invalid(fmt::format("{}x{} is stitched at {} bits a second; outputs of one size share their pictures",
                                 stitched->width, stitched->height, stitched->bitrate));
    }
  }
  if (others.size() < options_.mostStitched) return std::nullopt;
  return invalid(fmt::format("{} sizes are stitched already; use one of them, or end their outputs", others.size()));
}

Result<std::shared_ptr<CameraOutputs::Shared>> CameraOutputs::sharedFor(
    const std::optional<StitchedSize>& stitched) const {
  for (const Member& member : members())
    if (isSameSize(member.shared->stitched, stitched) && !member.shared->stream->failure()) return member.shared;
  auto stream = streams_->begin(stitched);
  if (!stream) return stream.error();
  return std::make_shared<Shared>(Shared{stitched, *std::move(stream)});
}

Result<OutputStatus> CameraOutputs::begin(const OutputRequest& request) {
  const std::lock_guard changing(changing_);
  if (const auto why = refusal(request)) return *why;
  auto place = OutputPlace::find(options_.folder, request.address);
  if (!place) return place.error();
  const auto shared = sharedFor(request.stitched);
  if (!shared) return shared.error();
  const auto added = (*shared)->stream->addOutput((*place)->target());
  if (!added) return added.error();
  Member member{0, *added, *shared, std::shared_ptr<OutputPlace>(*std::move(place))};
  {
    const MutexLock lock(mutex_);
    member.id = ++newest_;
    members_.push_back(member);
  }
  return statusOf(member, {});
}

Result<OutputStatus> CameraOutputs::end(int id) {
  const std::lock_guard changing(changing_);
  Member ended;
  {
    const MutexLock lock(mutex_);
    const auto found = std::ranges::find(members_, id, &Member::id);
    if (found == members_.end()) return invalid(fmt::format("there is no output {}", id));
    ended = *found;
  }
  const auto report = ended.shared->stream->removeOutput(ended.inStream);
  const MutexLock lock(mutex_);
  std::erase_if(members_, [id](const Member& member) { return member.id == id; });
  return statusOf(ended, report ? *report : OutputReport{});
}

std::vector<OutputStatus> CameraOutputs::list() const {
  std::vector<OutputStatus> all;
  for (const Member& member : members()) {
    const auto reports = member.shared->stream->outputs();
    const auto found = std::ranges::find(reports, member.inStream, &OutputReport::id);
    if (found != reports.end()) all.push_back(statusOf(member, *found));
  }
  return all;
}

// A stream that has ended takes its outputs along, whose own reports do not know of it.
OutputStatus CameraOutputs::statusOf(const Member& member, OutputReport report) {
  const auto failure = member.shared->stream->failure();
  if (failure && !report.fault) report.fault = *failure;
  return {member.id, member.place->shown(), member.shared->stitched, std::move(report)};
}

}  // namespace zel::gateway
